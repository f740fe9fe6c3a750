// Builds a bus message from JSON with the rules `ubus send` uses: an integer
// in int32 range is INT32, a larger one INT64, a boolean INT8, null UNSPEC.
#pragma once
#include <json-c/json.h>

#include "platform/bus.h"

namespace lynd {

// Members a scenario's message may carry.
constexpr size_t SIM_BUS_MAX_ATTRS = 256;

struct BusJsonMessage {
    BusAttr attrs[SIM_BUS_MAX_ATTRS];
    BusMessage msg;
};

// obj must be a JSON object and outlive the message. False for anything
// else; members past SIM_BUS_MAX_ATTRS are left out.
bool bus_message_from_json(json_object* obj, BusJsonMessage* out);

}  // namespace lynd

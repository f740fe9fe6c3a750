#include "sim/node/bus_json.h"

#include <cstdint>

namespace lynd {

namespace {

BusAttr attr_from_json(const char* name, json_object* v) {
    BusAttr a{name, BusType::UNSPEC, nullptr, 0, 0.0};
    switch (json_object_get_type(v)) {
    case json_type_object:
        a.type = BusType::TABLE;
        break;
    case json_type_array:
        a.type = BusType::ARRAY;
        break;
    case json_type_string:
        a.type = BusType::STRING;
        a.str = json_object_get_string(v);
        break;
    case json_type_boolean:
        a.type = BUS_TYPE_BOOL;
        a.i = json_object_get_boolean(v) ? 1 : 0;
        break;
    case json_type_int:
        a.i = json_object_get_int64(v);
        a.type = (a.i >= INT32_MIN && a.i <= INT32_MAX) ? BusType::INT32 : BusType::INT64;
        break;
    case json_type_double:
        a.type = BusType::DOUBLE;
        a.d = json_object_get_double(v);
        break;
    case json_type_null:
        break;
    }
    return a;
}

}  // namespace

bool bus_message_from_json(json_object* obj, BusJsonMessage* out) {
    out->msg = BusMessage{out->attrs, 0, false};
    if (!json_object_is_type(obj, json_type_object))
        return false;
    json_object_object_foreach(obj, key, val) {
        if (out->msg.count == SIM_BUS_MAX_ATTRS)
            break;
        out->attrs[out->msg.count++] = attr_from_json(key, val);
    }
    return true;
}

}  // namespace lynd

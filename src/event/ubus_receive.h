// The "lynd.*" events from the bus, decoded and handed to the hub.
#pragma once
#include "core/event_records.h"
#include "platform/bus.h"

void event_ubus_init(event_hub* ev);
void event_ubus_free(event_hub* ev);
void event_ubus_receive_cb(void* ctx, const char* type, const lynd::BusMessage& msg);
void event_ubus_receive_configure(event_hub* ev, const lynd::BusMessage& msg);
void event_ubus_receive_link_state(event_hub* ev, const lynd::BusMessage& msg);
void event_ubus_receive_debug(event_hub* ev, const lynd::BusMessage& msg);
void event_ubus_receive_traffic_separation(event_hub* ev, const lynd::BusMessage& msg);

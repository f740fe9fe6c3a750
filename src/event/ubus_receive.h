// The "lynd.*" events from the bus, decoded and handed to the hub.
#pragma once
#include "core/event_records.h"
#include "platform/bus.h"

bool event_ubus_init(event_hub* ev);
void event_ubus_free(event_hub* ev);

// A lost bus is tried again after 1 s, then after twice as long each time, up
// to 8 s.
constexpr uint32_t UBUS_RETRY_FIRST_MS = 1000;
constexpr uint32_t UBUS_RETRY_MAX_MS = 8000;
void event_ubus_lost(void* ctx);
// Publishes the daemon's object on the bus, now and after each reconnect;
// 0 or the bus's error code.
int event_ubus_add_object(event_hub* ev, const lynd::BusObject* object);
void event_ubus_retry(lynd::LoopTimer* t);
void event_ubus_receive_cb(void* ctx, const char* type, const lynd::BusMessage& msg);
void event_ubus_receive_configure(event_hub* ev, const lynd::BusMessage& msg);
void event_ubus_receive_link_state(event_hub* ev, const lynd::BusMessage& msg);
void event_ubus_receive_debug(event_hub* ev, const lynd::BusMessage& msg);
void event_ubus_receive_traffic_separation(event_hub* ev, const lynd::BusMessage& msg);

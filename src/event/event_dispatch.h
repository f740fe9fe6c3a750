// Handing events to the listeners, synchronously; what the event sources and
// the modules call.
#pragma once
#include <cstdint>

#include "core/event_records.h"

// Reaches the hub from code that has no context pointer; null until set up.
extern event_hub* l_ev;

void event_run_cb(event_hub* ev, uint32_t type, void* data);

// Listeners go to the head: the latest registered hears every event first.
void event_add_listener(event_hub* ev, event_listener* listener);
void event_del_listener(event_listener* listener);

lynd_config* event_hub_config(event_hub* ev);

// Asks every listener to configure the bridges for the node's own mode.
void lynd_run_configure_bridge();

// The event hub: the loop's set-up and tear-down, the event sources and the
// listeners every event is handed to, synchronously.
#pragma once
#include <cstdint>

#include "core/list.h"
#include "event/event_types.h"
#include "platform/loop.h"

struct lynd_config;
struct event_listener;

using event_cb = void (*)(lynd_config* conf, event_listener* listener, uint32_t type, void* data);

struct event_listener {
    lynd_list list;
    event_cb cb;
};

struct event_hub {
    lynd_list listeners;
    lynd::LoopFd hyfi_fd;  // hybrid-bridge netlink
    lynd::LoopFd wifi_fd;  // wireless rtnetlink
    uint32_t eth_state[4];  // last reported state of Ethernet ports 1..4
    bool bus_connected;
};

// Reaches the hub from code that has no context pointer; null until set up.
extern event_hub* l_ev;

void event_init(event_hub* ev);
void event_loop(event_hub* ev);
void event_run_cb(event_hub* ev, uint32_t type, void* data);
void event_free(event_hub* ev);

// Listeners go to the head: the latest registered hears every event first.
void event_add_listener(event_hub* ev, event_listener* listener);
void event_del_listener(event_listener* listener);

lynd_config* event_hub_config(event_hub* ev);

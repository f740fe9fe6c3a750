// Events of the hybrid bridge, read from its netlink protocol.
#pragma once
#include "core/event_records.h"

constexpr int HYFI_EVENT_PROTOCOL = 26;
constexpr uint32_t HYFI_RETRY_FIRST_MS = 1000;
constexpr uint32_t HYFI_RETRY_MAX_MS = 60000;

// At start: a socket that cannot be set up is fatal.
bool event_bridge_init(event_hub* ev);
// At run time, after a receive error: a socket that cannot be set up is
// tried again with growing pauses, and the daemon runs on meanwhile.
void event_bridge_rebuild(event_hub* ev);
void event_bridge_retry(lynd::LoopTimer* t);
void event_bridge_free(event_hub* ev);
// Tells every active bridge to send its events to the socket's port id.
void event_bridge_set_event(lynd_config* conf);
void event_hyfi_nl_cb(lynd::LoopFd* f, unsigned events);

// Events of the hybrid bridge, read from its netlink protocol.
#pragma once
#include "core/event_records.h"

constexpr int HYFI_EVENT_PROTOCOL = 26;

void event_bridge_init(event_hub* ev);
void event_bridge_free(event_hub* ev);
// Tells every active bridge to send its events to this process.
void event_bridge_set_event(lynd_config* conf);
void event_hyfi_nl_cb(lynd::LoopFd* f, unsigned events);

// Turning parsed "lynd.*" attributes into event payloads. Pure: the caller
// parses with the policies and owns everything passed in.
#pragma once
#include <cstdint>

#include "core/event_records.h"
#include "platform/bus.h"

// 1 gives TRI_ON, 0 TRI_OFF, anything else or absence TRI_KEEP.
uint32_t ubus_tristate(const lynd::BusAttr* attr);

void ubus_configure_from(const lynd::BusAttr* const* tb, configure_event* out);

// hub_state holds the last reported state of Ethernet ports 1..4 and is
// updated here, so a repeated report needs no reconfiguration.
void ubus_link_state_from(const lynd::BusAttr* link_state, uint32_t hub_state[4], link_state_event* out);

// False when the message asks for nothing the daemon knows: it is dropped.
bool ubus_debug_from(const lynd::BusAttr* const* tb, debug_event* out);

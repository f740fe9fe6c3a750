// Attribute policies of the "lynd.*" events, one row per attribute.
#pragma once
#include "platform/bus.h"

enum { CONFIGURE_MODE, CONFIGURE_HC_ENABLE, CONFIGURE_FOLLOW_RE, CONFIGURE_TCP_SP, __CONFIGURE_MAX };
enum { LINK_STATE_LINK_STATE, __LINK_STATE_MAX };
enum {
    DEBUG_DBG_LEVEL,
    DEBUG_DUMP,
    DEBUG_OVERLOAD,
    DEBUG_PATH,
    DEBUG_IFNAME,
    DEBUG_TXRATE,
    DEBUG_RXRATE,
    DEBUG_RSSI,
    DEBUG_NOISE,
    DEBUG_TXBYTES,
    DEBUG_RXBYTES,
    DEBUG_PATHSEL,
    DEBUG_BRCONF,
    __DEBUG_MAX
};

extern const lynd::bus_policy configure_policy[__CONFIGURE_MAX];
extern const lynd::bus_policy link_state_policy[__LINK_STATE_MAX];
extern const lynd::bus_policy debug_policy[__DEBUG_MAX];

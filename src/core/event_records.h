// The event hub's plain records: event numbers, the payloads handed to
// listeners, the listener link and the hub itself. A payload lives in the
// raiser's frame and is valid only during delivery.
#pragma once
#include <cstdint>

#include "core/list.h"
#include "core/types.h"
#include "platform/bus.h"
#include "platform/loop.h"

enum event_type : uint32_t {
    EVENT_STARTUP = 0,    // no payload
    EVENT_CONFIGURE = 1,  // configure_event
    EVENT_LINK_STATE = 2, // link_state_event
    EVENT_BRIDGE = 3,     // bridge_event
    EVENT_DEBUG = 4,      // debug_event
    EVENT_TS = 5,         // uint32_t need_reconfig, always 1
};

struct configure_event {
    uint32_t mode;
    uint32_t hc_enable;
    uint32_t follow_re;
    uint32_t tcp_sp;
};

struct link_state_event {
    uint32_t need_reconfig;
    uint32_t eth_state[4];
};

// The bridge's message types (a datagram's nlmsg_type) the daemon acts on.
enum bridge_msg_type : uint32_t {
    MSG_NEW_HC_ENTRY = 3,  // body: one hc entry
    MSG_BCAST_UPDATE = 5,
    MSG_BCAST_UPDATE_2 = 6,
    MSG_FDB_UPDATE = 7,  // body: one fdb entry
    MSG_RECONFIGURE = 11,
    MSG_RECONFIGURE_2 = 12,
};

struct bridge_event {
    uint32_t msg_type;
    uint64_t data_len;
    const uint8_t* data;
};

enum debug_subtype : uint8_t {
    DBG_LEVEL = 0,
    DBG_DUMP = 1,
    DBG_OVERLOAD = 2,
    DBG_SET_PATH_INFO = 3,
    DBG_CLEAN_PATH_INFO = 4,
    DBG_PATHSEL_MODE = 5,
    DBG_BRCONF_MODE = 6,
};

struct debug_path_info {
    char ifname[16];
    uint16_t txrate;
    uint16_t rxrate;
    int16_t rssi;
    int16_t noise;
    uint32_t txbytes;
    uint32_t rxbytes;
};

struct debug_event {
    uint8_t subtype;
    union {
        uint32_t value;  // DBG_LEVEL, DBG_DUMP, DBG_OVERLOAD
        uint8_t mode;    // DBG_PATHSEL_MODE, DBG_BRCONF_MODE
        debug_path_info path;
    };
};
static_assert(sizeof(debug_path_info) == 32, "path-info record layout");

struct lynd_config;
struct event_listener;

using event_cb = void (*)(lynd_config* conf, event_listener* listener, uint32_t type, void* data);

struct event_listener {
    lynd_list list;  // first: the hub walks the links
    event_cb cb;
};

struct event_hub {
    lynd_list listeners;
    lynd::LoopFd hyfi_fd;  // hybrid-bridge netlink
    uint32_t hyfi_port;    // its port id, which the bridges send to
    lynd::LoopTimer hyfi_retry;  // rebuilds a socket whose rebuild failed
    uint32_t hyfi_retry_ms;
    lynd::LoopFd wifi_fd;  // wireless rtnetlink
    uint32_t eth_state[4];  // last reported state of Ethernet ports 1..4
    bool bus_connected;
    lynd::LoopTimer bus_retry;  // reconnects after the bus daemon went away
    uint32_t bus_retry_ms;
    const lynd::BusObject* bus_object;  // added again on each new connection
};

#include "event/ubus_receive.h"

#include <cstddef>
#include <cstring>

#include "core/counters.h"
#include "core/log.h"
#include "event/bridge_events.h"
#include "event/event_dispatch.h"
#include "event/ubus_decode.h"
#include "event/ubus_policy.h"
#include "platform/seams.h"
#include "wlan/traffic_separation.h"

using lynd::BusAttr;
using lynd::BusMessage;

namespace {

constexpr const char* kPrefix = "lynd.";
constexpr size_t kPrefixLen = 5;

struct ubus_subtype {
    const char* name;
    void (*handler)(event_hub* ev, const BusMessage& msg);
};

const ubus_subtype subtypes[] = {
    {"configure", event_ubus_receive_configure},
    {"link_state", event_ubus_receive_link_state},
    {"debug", event_ubus_receive_debug},
    {"traffic_separation", event_ubus_receive_traffic_separation},
};

}  // namespace

bool event_ubus_init(event_hub* ev) {
    lynd::Bus& bus = lynd::bus();
    if (bus.connect() != 0) {
        LYND_FATAL("ubus_connect");
        return false;
    }
    ev->bus_connected = true;
    int rc = bus.register_event_handler("lynd.*", event_ubus_receive_cb, ev);
    if (rc != 0) {
        LYND_FATAL("ubus_register_event_handler: %s", bus.strerror(rc));
        return false;
    }
    bus.add_to_loop();
    bus.set_lost_handler(event_ubus_lost, ev);
    ev->bus_retry.cb = event_ubus_retry;
    LYND_LOG("init done");
    return true;
}

void event_ubus_free(event_hub* ev) {
    if (ev->bus_retry.pending)
        (void)lynd::loop().timer_cancel(&ev->bus_retry);
    if (!ev->bus_connected)
        return;
    lynd::bus().free();
    ev->bus_connected = false;
}

// Without the bus daemon no event arrives, and procd sees a daemon that is
// alive: it must come back by itself.
void event_ubus_lost(void* ctx) {
    auto* ev = static_cast<event_hub*>(ctx);
    LYND_ERR("ubus connection lost, reconnecting");
    ev->bus_connected = false;
    ev->bus_retry_ms = UBUS_RETRY_FIRST_MS;
    (void)lynd::loop().timer_set(&ev->bus_retry, static_cast<int>(ev->bus_retry_ms));
}

void event_ubus_retry(lynd::LoopTimer* t) {
    auto* ev = static_cast<event_hub*>(lynd_container_of(t, offsetof(event_hub, bus_retry)));
    lynd::Bus& bus = lynd::bus();
    if (bus.reconnect() != 0 || bus.register_event_handler("lynd.*", event_ubus_receive_cb, ev) != 0) {
        ev->bus_retry_ms = ev->bus_retry_ms * 2 > UBUS_RETRY_MAX_MS ? UBUS_RETRY_MAX_MS : ev->bus_retry_ms * 2;
        (void)lynd::loop().timer_set(&ev->bus_retry, static_cast<int>(ev->bus_retry_ms));
        return;
    }
    bus.add_to_loop();
    ev->bus_connected = true;
    g_counters.bus_reconnects++;
    LYND_INFO("ubus connection is back");
    if (ev->bus_object != nullptr)
        (void)event_ubus_add_object(ev, ev->bus_object);
    // What was sent meanwhile is gone: settle what can be read again.
    LYND_WARN("link-state events sent while ubus was away may have been missed");
    event_ubus_receive_traffic_separation(ev, BusMessage{nullptr, 0, false});
}

int event_ubus_add_object(event_hub* ev, const lynd::BusObject* object) {
    ev->bus_object = object;
    lynd::Bus& bus = lynd::bus();
    int rc = bus.add_object(*object);
    if (rc != 0)
        LYND_ERR("ubus_add_object %s: %s", object->name, bus.strerror(rc));
    else
        LYND_DEBUG("ubus object %s added", object->name);
    return rc;
}

void event_ubus_receive_cb(void* ctx, const char* type, const BusMessage& msg) {
    auto* ev = static_cast<event_hub*>(ctx);
    if (type == nullptr || std::strncmp(type, kPrefix, kPrefixLen) != 0) {
        LYND_ERR("wrong type");
        return;
    }
    const char* subtype = type + kPrefixLen;
    LYND_DEBUG("ubus receive:%s", subtype);
    for (const ubus_subtype& s : subtypes) {
        if (std::strcmp(s.name, subtype) == 0) {
            s.handler(ev, msg);
            return;
        }
    }
    LYND_WARN("unknown subtype");
}

void event_ubus_receive_configure(event_hub* ev, const BusMessage& msg) {
    const BusAttr* tb[__CONFIGURE_MAX];
    BusAttr found[__CONFIGURE_MAX];
    if (lynd::bus_parse(configure_policy, __CONFIGURE_MAX, tb, found, msg) != 0)
        return;
    // The announcement of a role is also when the bridges forget us.
    event_bridge_set_event(event_hub_config(ev));
    configure_event cfg;
    ubus_configure_from(tb, &cfg);
    event_run_cb(ev, EVENT_CONFIGURE, &cfg);
}

void event_ubus_receive_link_state(event_hub* ev, const BusMessage& msg) {
    const BusAttr* tb[__LINK_STATE_MAX];
    BusAttr found[__LINK_STATE_MAX];
    int rc = lynd::bus_parse(link_state_policy, __LINK_STATE_MAX, tb, found, msg);
    LYND_DEBUG("link_state parse ");
    if (rc != 0) {
        LYND_DEBUG("link_state parse failed");
        return;
    }
    link_state_event ls;
    ubus_link_state_from(tb[LINK_STATE_LINK_STATE], ev->eth_state, &ls);
    event_run_cb(ev, EVENT_LINK_STATE, &ls);
}

void event_ubus_receive_debug(event_hub* ev, const BusMessage& msg) {
    const BusAttr* tb[__DEBUG_MAX];
    BusAttr found[__DEBUG_MAX];
    if (lynd::bus_parse(debug_policy, __DEBUG_MAX, tb, found, msg) != 0)
        return;
    debug_event dbg;
    if (ubus_debug_from(tb, &dbg))
        event_run_cb(ev, EVENT_DEBUG, &dbg);
}

void event_ubus_receive_traffic_separation(event_hub* ev, const BusMessage&) {
    traffic_separation_config_load(event_hub_config(ev));
    uint32_t need_reconfig = 1;
    event_run_cb(ev, EVENT_TS, &need_reconfig);
}

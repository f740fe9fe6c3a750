#include "event/ubus_decode.h"

#include <cstring>

#include "core/log.h"
#include "event/ubus_policy.h"

using lynd::BusAttr;

namespace {

// The decoders log for the receivers they serve.
constexpr const char* kConfigureFn = "event_ubus_receive_configure";
constexpr const char* kLinkStateFn = "event_ubus_receive_link_state";
constexpr const char* kDebugFn = "event_ubus_receive_debug";

int32_t i32(const BusAttr* a) { return static_cast<int32_t>(a->i); }

uint32_t work_mode_from(const char* mode) {
    if (std::strcmp(mode, "RE") == 0)
        return WORK_MODE_RE;
    if (std::strcmp(mode, "FAP") == 0 || std::strcmp(mode, "AP") == 0)
        return WORK_MODE_FAP;
    if (std::strcmp(mode, "HAP") == 0)
        return WORK_MODE_HAP;
    return WORK_MODE_INVALID;
}

void path_info_from(const BusAttr* const* tb, debug_path_info* p) {
    if (tb[DEBUG_TXRATE])
        p->txrate = static_cast<uint16_t>(tb[DEBUG_TXRATE]->i);
    if (tb[DEBUG_RXRATE])
        p->rxrate = static_cast<uint16_t>(tb[DEBUG_RXRATE]->i);
    if (tb[DEBUG_RSSI])
        p->rssi = static_cast<int16_t>(tb[DEBUG_RSSI]->i);
    if (tb[DEBUG_NOISE])
        p->noise = static_cast<int16_t>(tb[DEBUG_NOISE]->i);
    if (tb[DEBUG_TXBYTES])
        p->txbytes = static_cast<uint32_t>(tb[DEBUG_TXBYTES]->i);
    if (tb[DEBUG_RXBYTES])
        p->rxbytes = static_cast<uint32_t>(tb[DEBUG_RXBYTES]->i);
}

bool debug_path_from(const BusAttr* const* tb, debug_event* out) {
    if (tb[DEBUG_IFNAME])
        std::strncpy(out->path.ifname, tb[DEBUG_IFNAME]->str, sizeof out->path.ifname - 1);
    switch (ubus_tristate(tb[DEBUG_PATH])) {
    case TRI_ON:
        out->subtype = DBG_SET_PATH_INFO;
        path_info_from(tb, &out->path);
        LYND_DEBUG_AS(kDebugFn, "%s set path info: txrate=%d rxrate=%d rssi=%d noise=%d txbytes=%d rxbytes=%d",
                      out->path.ifname, out->path.txrate, out->path.rxrate, out->path.rssi, out->path.noise,
                      static_cast<int>(out->path.txbytes), static_cast<int>(out->path.rxbytes));
        return true;
    case TRI_OFF:
        out->subtype = DBG_CLEAN_PATH_INFO;
        LYND_DEBUG_AS(kDebugFn, "%s clean path info", out->path.ifname);
        return true;
    default:
        LYND_WARN_AS(kDebugFn, "debug path request %d is neither 0 nor 1, dropped", i32(tb[DEBUG_PATH]));
        return false;
    }
}

}  // namespace

uint32_t ubus_tristate(const BusAttr* attr) {
    if (attr == nullptr)
        return TRI_KEEP;
    switch (i32(attr)) {
    case 1:
        return TRI_ON;
    case 0:
        return TRI_OFF;
    default:
        return TRI_KEEP;
    }
}

void ubus_configure_from(const BusAttr* const* tb, configure_event* out) {
    *out = configure_event{};
    out->mode = WORK_MODE_INVALID;
    if (tb[CONFIGURE_MODE]) {
        out->mode = work_mode_from(tb[CONFIGURE_MODE]->str);
        LYND_WARN_AS(kConfigureFn, "work mode: %d", out->mode);
    }
    out->hc_enable = ubus_tristate(tb[CONFIGURE_HC_ENABLE]);
    out->follow_re = ubus_tristate(tb[CONFIGURE_FOLLOW_RE]);
    out->tcp_sp = ubus_tristate(tb[CONFIGURE_TCP_SP]);
}

void ubus_link_state_from(const BusAttr* link_state, uint32_t hub_state[4], link_state_event* out) {
    *out = link_state_event{};
    if (link_state == nullptr)
        return;
    uint32_t bits = static_cast<uint32_t>(link_state->i);
    for (int i = 0; i < 4; i++) {
        uint32_t state = (bits & (0x10u << i)) != 0 ? 1 : 0;
        out->eth_state[i] = state;
        LYND_DEBUG_AS(kLinkStateFn, "eth%d state %d", i + 1, state);
        if (state != hub_state[i]) {
            out->need_reconfig = 1;
            LYND_DEBUG_AS(kLinkStateFn, "eth%d link state change, need_reconfig", i + 1);
        }
        hub_state[i] = state;
    }
}

bool ubus_debug_from(const BusAttr* const* tb, debug_event* out) {
    std::memset(out, 0, sizeof *out);
    if (tb[DEBUG_DBG_LEVEL]) {
        uint32_t level = static_cast<uint32_t>(tb[DEBUG_DBG_LEVEL]->i);
        out->subtype = DBG_LEVEL;
        out->value = level > 6 ? 6 : level;
    } else if (tb[DEBUG_DUMP]) {
        out->subtype = DBG_DUMP;
        out->value = ubus_tristate(tb[DEBUG_DUMP]);
    } else if (tb[DEBUG_OVERLOAD]) {
        out->subtype = DBG_OVERLOAD;
        out->value = static_cast<uint32_t>(tb[DEBUG_OVERLOAD]->i);
    } else if (tb[DEBUG_PATH]) {
        return debug_path_from(tb, out);
    } else if (tb[DEBUG_PATHSEL]) {
        out->subtype = DBG_PATHSEL_MODE;
        out->mode = static_cast<uint8_t>(tb[DEBUG_PATHSEL]->i);
        LYND_LOG_AS(kDebugFn, "Set pathsel_mode to %d", out->mode);
    } else if (tb[DEBUG_BRCONF]) {
        out->subtype = DBG_BRCONF_MODE;
        out->mode = static_cast<uint8_t>(tb[DEBUG_BRCONF]->i);
        LYND_LOG_AS(kDebugFn, "Set brconf_mode to %d", out->mode);
    } else {
        // Delivering this as a level request would silence the daemon.
        LYND_WARN_AS(kDebugFn, "debug message without a known request, dropped");
        return false;
    }
    return true;
}

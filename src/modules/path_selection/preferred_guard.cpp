#include "modules/path_selection/preferred_guard.h"

#include "core/decision_ring.h"
#include "core/log.h"
#include "platform/seams.h"

namespace {

struct preferred_leave {
    uint8_t left;  // the slot the preferred port left last, PATH_NONE for none
    int64_t left_ms;
};
preferred_leave g_leaves[LYND_MAX_BRIDGES];

preferred_leave* leave_of(const conf_bridge* bridge) {
    if (g_ps_conf == nullptr || bridge < g_ps_conf->bridges || bridge >= g_ps_conf->bridges + LYND_MAX_BRIDGES)
        return nullptr;
    return &g_leaves[bridge - g_ps_conf->bridges];
}

uint8_t slot_of(uint32_t ifindex) {
    if (ifindex == 0)
        return PATH_NONE;
    for (uint8_t t = 0; t < IF_TYPE_MAX; t++)
        if (hc_paths[t].name[0] != '\0' && lynd::host().if_nametoindex(hc_paths[t].name) == ifindex)
            return t;
    return PATH_NONE;
}

uint32_t window_ms() { return g_ps_conf != nullptr ? g_ps_conf->param.flap_guard.preferred_return_ms : 0; }

}  // namespace

void preferred_guard_reset() {
    for (preferred_leave& l : g_leaves)
        l = preferred_leave{PATH_NONE, 0};
}

hc_path* preferred_guard_choose(conf_bridge* bridge, hc_path* best, hc_path* paths) {
    preferred_leave* l = leave_of(bridge);
    if (window_ms() == 0 || l == nullptr || best->type != l->left)
        return best;
    int64_t ago = lynd_monotonic_ms() - l->left_ms;
    uint8_t cur = slot_of(bridge->preferred_ifindex);
    if (ago >= window_ms() || cur == PATH_NONE || cur == best->type || !path_is_live(paths[cur]) ||
        best->state < paths[cur].state)
        return best;
    LYND_LOG("preferred port stays on %s: it left %s %lld s ago", paths[cur].name, best->name,
             static_cast<long long>(ago / 1000));
    return &paths[cur];
}

void preferred_guard_note(conf_bridge* bridge, uint32_t before_ifindex, uint32_t after_ifindex) {
    preferred_leave* l = leave_of(bridge);
    if (window_ms() == 0 || l == nullptr || before_ifindex == after_ifindex)
        return;
    l->left = slot_of(before_ifindex);
    l->left_ms = lynd_monotonic_ms();
}

#include "modules/path_selection/path_insight.h"

#include "core/counters.h"
#include "core/decision_ring.h"

path_insight g_path_insight[IF_TYPE_MAX];

const char* const rating_rule_texts[6] = {
    "not rated",
    "too few samples since the link came up",
    "weak link: a mean below a weak-link threshold and the rate below its threshold",
    "weak link held: a mean below a hold threshold and the rate below its threshold",
    "normal: traffic sent and a rate above its floor",
    "abnormal: no traffic sent, or both rates at their floor",
};

const char* const quota_block_texts[5] = {"", "cpu overload on 2.4G", "abnormal path", "weak path while another is normal",
                                          "overload set by debug"};

void path_insight_reset() {
    for (auto& p : g_path_insight)
        p = path_insight{};
}

void path_insight_state_changed(const hc_path& p, uint8_t from, const char* reason) {
    if (p.type >= IF_TYPE_MAX || from == p.state)
        return;
    lynd_count_state_change(p.state);
    path_insight& in = g_path_insight[p.type];
    int64_t now = lynd_monotonic_ms();
    in.entered_ms = now;
    int64_t minute = now / 60000;
    flap_bucket& b = in.flaps[minute % FLAP_MINUTES];
    if (b.minute != minute)
        b = flap_bucket{minute, 0};
    if (b.changes < UINT16_MAX)
        b.changes++;
    decision_record(DECISION_PATH_STATE, p.name, path_state_names[from], path_state_names[p.state], reason);
}

uint32_t path_insight_flaps(int slot, int64_t now_ms) {
    if (slot < 0 || slot >= static_cast<int>(IF_TYPE_MAX))
        return 0;
    int64_t minute = now_ms / 60000;
    uint32_t n = 0;
    for (const flap_bucket& b : g_path_insight[slot].flaps)
        if (b.changes != 0 && b.minute > minute - FLAP_MINUTES && b.minute <= minute)
            n += b.changes;
    return n;
}

// What an operator asks of a path: how long it has been in its state, how
// often it changed lately, and the figures of its last rating.
#pragma once
#include <cstdint>

#include "modules/path_selection/hc_records.h"

// State changes are counted per minute over the last hour.
constexpr int FLAP_MINUTES = 60;

enum rating_rule : uint8_t {
    RULE_NONE = 0,
    RULE_FEW_SAMPLES,  // fresh path, not enough samples yet
    RULE_WEAK,         // a mean below a weak-link threshold and the rate low
    RULE_HOLD,         // a mean below a hold threshold, the rate low, and already weak
    RULE_NORMAL,       // traffic sent and a rate above its floor
    RULE_ABNORMAL,     // no traffic sent, or both rates at their floor
};
extern const char* const rating_rule_texts[6];

// The last rating of a path.
struct path_rating {
    int64_t at_ms;
    uint8_t rule;
    uint8_t state_before;
    uint8_t state_after;
    uint8_t samples;
    int32_t ma_rssi;
    int32_t ma_snr;
    uint32_t smooth_rate;
    uint16_t txrate;
    uint16_t rxrate;
    uint16_t rate;
    int64_t tx_bytes;  // sent since the previous sample
    bool weak;
    bool hold;
    bool tx_low;
    bool rx_low;
    bool no_tx;
    uint8_t weak_count;
    uint8_t abnormal_count;
};

// Why the last quota run left a path no quota, beyond its load.
enum quota_block : uint8_t { QUOTA_OPEN = 0, QUOTA_CPU, QUOTA_ABNORMAL, QUOTA_WEAK, QUOTA_DEBUG };
extern const char* const quota_block_texts[5];

struct flap_bucket {
    int64_t minute;
    uint16_t changes;
};

struct path_insight {
    int64_t entered_ms;  // when the path took its present state
    flap_bucket flaps[FLAP_MINUTES];
    path_rating rating;
    uint8_t quota_block;
};
extern path_insight g_path_insight[IF_TYPE_MAX];
void path_insight_reset();

// Counts the change of slot p from state `from` to its present state, and
// records it as a decision with reason.
void path_insight_state_changed(const hc_path& p, uint8_t from, const char* reason);
// State changes of a slot in the hour up to now_ms.
uint32_t path_insight_flaps(int slot, int64_t now_ms);

// The path sampler's per-type records, cleared when a link of the type
// comes up so that old samples do not count for the new link.
#pragma once
#include <cstdint>

#include "core/types.h"

constexpr int UTIL_SAMPLES = 3;

// One type's traffic record.
struct traffic_record {
    uint64_t tx;
    uint64_t rx;
};
static_assert(sizeof(traffic_record) == 16, "a traffic record is two 64-bit values");

struct wlan_link_records {
    uint8_t util_record[IF_TYPE_MAX][UTIL_SAMPLES];  // utilisation samples, percent
    uint32_t util_total[IF_TYPE_MAX];
    traffic_record trinfo[IF_TYPE_MAX];
};
extern wlan_link_records g_wlan_link_records;
void wlan_link_records_reset();

// A type outside 0..4 is ignored.
void wlan_reset_util_record(uint32_t type);
void wlan_reset_trinfo(uint32_t type);

// Reading the driver's station-table reply: a run of variable-length
// station records.
#pragma once
#include <cstddef>
#include <cstdint>

#include "wlan/wlan_link_info.h"

// Pure: the peers in the first len bytes of reply, at most max of them. A
// record is read while a whole fixed part (QCA_STA_RECORD_MIN bytes) remains;
// the walk ends after a record whose length is 0 or runs past the bytes left.
size_t qca_read_sta_table(const uint8_t* reply, size_t len, wlan_link_info* links, size_t max);

// Reading the byte counters out of apstats' verbose report.
#pragma once
#include <cstddef>
#include <cstdint>

#include "wlan/wlan_link_info.h"


// Pure: only lines (read 511 bytes at a time) that hold "x Data Bytes" count;
// one holding "Tx" gives tx_bytes from the number after its first "= ", "Rx"
// likewise. Reading stops once both are found; true then. A counter not
// found keeps its value.
bool wlan_read_apstats(const char* text, size_t len, wlan_link_counters* counters);

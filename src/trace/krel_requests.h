// Calls into the bridge library as a record names them. Writes are outputs:
// a replay builds the same record and compares it whole.
#pragma once
#include <cstdint>

#include "trace/trace_line.h"

namespace lynd {

// A call's arguments; what a call does not take stays empty.
struct KrelArgs {
    const char* fn;
    const char* br;
    const char* ifname = nullptr;
    const char* other = nullptr;  // the second interface name
    const unsigned char* mac = nullptr;
    const unsigned char* id = nullptr;
    int nums = 0;
    int64_t num[3] = {};
};

void req_krel(TraceLine& l, const KrelArgs& a);

}  // namespace lynd

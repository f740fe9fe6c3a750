#include "trace/trace_hex.h"

#include <cstdio>
#include <cstring>

#include "core/mac.h"

namespace lynd {

namespace {

const char kHex[] = "0123456789abcdef";
// Shorter runs cost less written out.
constexpr size_t kZeroRun = 4;

// The count of the run at *i; a run longer than any field is damage.
bool zero_run(const char* hex, size_t len, size_t* i, size_t* run) {
    size_t j = *i + 1;
    *run = 0;
    for (; j < len && hex[j] >= '0' && hex[j] <= '9'; j++)
        if (*run <= TRACE_FIELD_MAX)
            *run = *run * 10 + static_cast<size_t>(hex[j] - '0');
    if (j == *i + 1 || j >= len || hex[j] != '.' || *run > TRACE_FIELD_MAX)
        return false;
    *i = j + 1;
    return true;
}

}  // namespace

size_t trace_hex(char* out, size_t room, const void* p, size_t n) {
    const auto* b = static_cast<const uint8_t*>(p);
    size_t len = 0;
    for (size_t i = 0; i < n;) {
        size_t run = 0;
        while (i + run < n && b[i + run] == 0)
            run++;
        char piece[24];
        int m = 2;
        if (run >= kZeroRun) {
            m = std::snprintf(piece, sizeof piece, "z%zu.", run);
            i += run;
        } else {
            piece[0] = kHex[b[i] >> 4];
            piece[1] = kHex[b[i] & 15];
            i++;
        }
        if (static_cast<size_t>(m) > room - len)
            return room + 1;
        std::memcpy(out + len, piece, static_cast<size_t>(m));
        len += static_cast<size_t>(m);
    }
    return len;
}

bool trace_unhex(const char* hex, size_t len, uint8_t* out, size_t room, size_t* decoded) {
    size_t n = 0;
    for (size_t i = 0; i < len;) {
        if (hex[i] == 'z') {
            size_t run = 0;
            if (!zero_run(hex, len, &i, &run))
                return false;
            if (n < room)
                std::memset(out + n, 0, run < room - n ? run : room - n);
            n = run <= SIZE_MAX - n ? n + run : SIZE_MAX;
            continue;
        }
        int hi = i + 1 < len ? lynd_hex_digit(hex[i]) : -1;
        int lo = i + 1 < len ? lynd_hex_digit(hex[i + 1]) : -1;
        if (hi < 0 || lo < 0)
            return false;
        if (n < room)
            out[n] = static_cast<uint8_t>(hi * 16 + lo);
        n += n < SIZE_MAX ? 1 : 0;
        i += 2;
    }
    *decoded = n;
    return true;
}

}  // namespace lynd

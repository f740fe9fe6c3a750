// Fields of received bytes, read in host order without alignment demands.
#pragma once
#include <cstdint>
#include <cstring>

inline uint16_t load_u16(const uint8_t* p) {
    uint16_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

inline uint32_t load_u32(const uint8_t* p) {
    uint32_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

inline int32_t load_s32(const uint8_t* p) { return static_cast<int32_t>(load_u32(p)); }

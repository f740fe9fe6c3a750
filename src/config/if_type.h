// Interface types, which also index every per-band and per-path table.
#pragma once
#include <cstdint>

enum if_type : uint32_t {
    IF_TYPE_ETH = 0,
    IF_TYPE_2G = 1,
    IF_TYPE_5G = 2,
    IF_TYPE_5G_2 = 3,
    IF_TYPE_6G = 4,
    IF_TYPE_MAX = 5,  // unknown, or no type
};

constexpr uint32_t default_priority[IF_TYPE_MAX] = {6, 1, 3, 4, 2};

// Per-band parameters come in three values; the second 5 GHz path uses 5 GHz.
constexpr int BAND_2G = 0;
constexpr int BAND_5G = 1;
constexpr int BAND_6G = 2;
constexpr int BAND_COUNT = 3;

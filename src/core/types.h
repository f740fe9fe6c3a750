// Types and sizes every layer of the daemon shares.
#pragma once
#include <cstdint>

constexpr int LYND_NAME_LEN = 16;  // interface names: 15 characters and the terminator

enum work_mode : uint32_t {
    WORK_MODE_RE = 0,
    WORK_MODE_FAP = 1,
    WORK_MODE_HAP = 2,
    WORK_MODE_INVALID = 3,
};

enum tristate : uint32_t { TRI_KEEP = 0, TRI_ON = 1, TRI_OFF = 2 };

// Interface types, which also index every per-band and per-path table.

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

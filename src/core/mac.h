// MAC addresses: 6 raw bytes, all zero meaning unknown.
#pragma once
#include <cstdint>

constexpr int LYND_MAC_LEN = 6;

inline bool lynd_mac_is_zero(const uint8_t* mac) {
    for (int i = 0; i < LYND_MAC_LEN; i++)
        if (mac[i] != 0)
            return false;
    return true;
}

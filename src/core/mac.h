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

// Pure: reads text as "XX-XX-XX-XX-XX-XX" when sep is '-', else as
// "XX:XX:XX:XX:XX:XX". Octets that do not parse are 0; the count parsed.
int lynd_parse_mac_text(const char* text, char sep, uint8_t* mac_out);

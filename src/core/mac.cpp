#include "core/mac.h"

#include <cstdio>
#include <cstring>

int lynd_parse_mac_text(const char* text, char sep, uint8_t* mac_out) {
    unsigned o[LYND_MAC_LEN] = {};
    const char* format = sep == '-' ? "%02X-%02X-%02X-%02X-%02X-%02X" : "%02X:%02X:%02X:%02X:%02X:%02X";
    int n = std::sscanf(text, format, &o[0], &o[1], &o[2], &o[3], &o[4], &o[5]);
    for (int i = 0; i < LYND_MAC_LEN; i++)
        mac_out[i] = static_cast<uint8_t>(o[i]);
    return n > 0 ? n : 0;
}

lynd_mac_str lynd_mac(const uint8_t* mac, char sep, bool upper) {
    const char* digits = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    lynd_mac_str t;
    for (int i = 0; i < LYND_MAC_LEN; i++) {
        t.s[i * 3] = digits[mac[i] >> 4];
        t.s[i * 3 + 1] = digits[mac[i] & 0xf];
        t.s[i * 3 + 2] = i + 1 < LYND_MAC_LEN ? sep : '\0';
    }
    return t;
}

void lynd_mac_text(const uint8_t* mac, char* out) { std::memcpy(out, lynd_mac(mac).s, LYND_MAC_TEXT_LEN); }

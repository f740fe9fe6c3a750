#include "core/mac.h"

#include <cstdio>

int lynd_parse_mac_text(const char* text, char sep, uint8_t* mac_out) {
    unsigned o[LYND_MAC_LEN] = {};
    const char* format = sep == '-' ? "%02X-%02X-%02X-%02X-%02X-%02X" : "%02X:%02X:%02X:%02X:%02X:%02X";
    int n = std::sscanf(text, format, &o[0], &o[1], &o[2], &o[3], &o[4], &o[5]);
    for (int i = 0; i < LYND_MAC_LEN; i++)
        mac_out[i] = static_cast<uint8_t>(o[i]);
    return n > 0 ? n : 0;
}

void lynd_mac_text(const uint8_t* mac, char* out) {
    std::snprintf(out, LYND_MAC_TEXT_LEN, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3], mac[4],
                  mac[5]);
}

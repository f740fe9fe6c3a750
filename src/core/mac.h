// MAC addresses: 6 raw bytes, all zero meaning unknown.
#pragma once
#include <cstdint>

constexpr int LYND_MAC_LEN = 6;
constexpr int LYND_MAC_TEXT_LEN = 18;  // "xx:xx:xx:xx:xx:xx" and the terminator

inline bool lynd_mac_is_zero(const uint8_t* mac) {
    for (int i = 0; i < LYND_MAC_LEN; i++)
        if (mac[i] != 0)
            return false;
    return true;
}

// The value of one hex digit, -1 for any other character.
inline int lynd_hex_digit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// Pure: reads text as "XX-XX-XX-XX-XX-XX" when sep is '-', else as
// "XX:XX:XX:XX:XX:XX". Octets that do not parse are 0; the count parsed.
int lynd_parse_mac_text(const char* text, char sep, uint8_t* mac_out);

// "xx:xx:xx:xx:xx:xx"; out has room for LYND_MAC_TEXT_LEN bytes.
void lynd_mac_text(const uint8_t* mac, char* out);

// The same for a log line's argument, with the separator and the case the
// line has: lynd_mac(m).s lives to the end of the statement, and is only
// made when the line is printed.
struct lynd_mac_str {
    char s[LYND_MAC_TEXT_LEN];
};
lynd_mac_str lynd_mac(const uint8_t* mac, char sep = ':', bool upper = false);

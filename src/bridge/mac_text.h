// MAC addresses written as six hexadecimal octets with a separator.
#pragma once
#include <cstdint>

#include "core/mac.h"

// Pure: reads text as "XX-XX-XX-XX-XX-XX" when sep is '-', else as
// "XX:XX:XX:XX:XX:XX". Octets that do not parse are 0; the count parsed.
int lynd_parse_mac_text(const char* text, char sep, uint8_t* mac_out);

// VLAN sub-interface names: a base name, an optional dot and the VLAN id.
#pragma once
#include <cstdint>

// Always 1. out is a 16-byte field; the name is cut to 15 characters.
int lynd_get_vlan_name(char* out, const char* base, uint32_t vid, bool dotted);

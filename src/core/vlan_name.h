// VLAN sub-interface names: a base name, an optional dot and the VLAN id.
// Pure.
#pragma once
#include <cstdint>

// Always 1. out is a 16-byte field; the name is cut to 15 characters.
int lynd_get_vlan_name(char* out, const char* base, uint32_t vid, bool dotted);

// Always 1. out (16 bytes) receives the name before its last dot, or the
// whole name when there is no dot or the dot stands past the field.
int lynd_get_home_name(char* out, const char* name);

// The id after the last dot, 1..4095; 0 for anything else.
uint32_t lynd_get_vlan_id(const char* name);

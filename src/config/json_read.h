// Reading members of the configuration with json-c's own conversions: a
// number or a non-empty string counts as true, a numeric string converts,
// a fraction is cut.
#pragma once
#include <json-c/json.h>

#include <cstdint>

inline json_object* json_member(json_object* obj, const char* key) {
    json_object* v = nullptr;
    return json_object_object_get_ex(obj, key, &v) ? v : nullptr;
}

inline bool json_bool_or(json_object* obj, const char* key, bool def) {
    json_object* v = json_member(obj, key);
    return v != nullptr ? json_object_get_boolean(v) != 0 : def;
}

inline int32_t json_int_or(json_object* obj, const char* key, int32_t def) {
    json_object* v = json_member(obj, key);
    return v != nullptr ? json_object_get_int(v) : def;
}

inline int32_t clamp_i32(int32_t v, int32_t lo, int32_t hi) { return v < lo ? lo : (v > hi ? hi : v); }

// A member that is present must be an object to be read at all.
inline bool json_is_object(json_object* v) { return json_object_is_type(v, json_type_object) != 0; }

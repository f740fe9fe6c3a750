// Reading members of the configuration with json-c's own conversions: a
// number or a non-empty string counts as true, a numeric string converts,
// a fraction is cut. A member written as null is present: json-c reads it
// as 0 or false.
#pragma once
#include <json-c/json.h>

#include <cstdint>

// True when key stands in obj; *v is its value (null for a JSON null).
inline bool json_has(json_object* obj, const char* key, json_object** v) {
    *v = nullptr;
    return json_object_object_get_ex(obj, key, v) != 0;
}

inline bool json_bool_or(json_object* obj, const char* key, bool def) {
    json_object* v;
    return json_has(obj, key, &v) ? json_object_get_boolean(v) != 0 : def;
}

inline int32_t json_int_or(json_object* obj, const char* key, int32_t def) {
    json_object* v;
    return json_has(obj, key, &v) ? json_object_get_int(v) : def;
}

inline int32_t clamp_i32(int32_t v, int32_t lo, int32_t hi) { return v < lo ? lo : (v > hi ? hi : v); }

inline bool json_is_object(json_object* v) { return json_object_is_type(v, json_type_object) != 0; }

// Checked reads of JSON members for the scenario parser: each read either
// succeeds, finds nothing, or records the first problem in words.
#pragma once
#include <json-c/json.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace lynd {

constexpr size_t kJsonMaxText = 4096;
constexpr size_t kJsonMaxItems = 4096;

// Keeps the first problem; later failures leave it alone.
struct JsonReader {
    std::string* error;
    bool ok = true;
    bool fail(const std::string& what);
};

// Exactly "xx:xx:xx:xx:xx:xx".
bool parse_mac(const std::string& text, uint8_t* mac);

json_object* json_member(json_object* obj, const char* key);
bool json_is(json_object* v, json_type t);

// False when key is absent or fails its check (which is recorded).
bool json_get_string(JsonReader& r, json_object* obj, const char* key, std::string* out,
                     size_t max = kJsonMaxText);
bool json_get_int(JsonReader& r, json_object* obj, const char* key, int64_t lo, int64_t hi, int64_t* out);
bool json_get_bool(JsonReader& r, json_object* obj, const char* key, bool* out);
bool json_get_mac(JsonReader& r, json_object* obj, const char* key, uint8_t* mac);

// False (recorded) when o has a key not in the null-ended keys: a misspelt
// key would silently keep a default. what names o in the message.
bool json_only_keys(JsonReader& r, json_object* o, const char* const* keys, const char* what);

// Null when key is absent or of another shape (recorded).
json_object* json_array_member(JsonReader& r, json_object* obj, const char* key);
json_object* json_object_member(JsonReader& r, json_object* obj, const char* key);

}  // namespace lynd

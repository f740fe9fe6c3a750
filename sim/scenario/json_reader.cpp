#include "sim/scenario/json_reader.h"

#include <cctype>
#include <cstring>

namespace lynd {

namespace {

std::string quoted(const char* key) { return std::string("\"") + key + "\""; }

int hex_digit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

}  // namespace

bool parse_mac(const std::string& text, uint8_t* mac) {
    if (text.size() != 17)
        return false;
    for (size_t i = 0; i < 6; i++) {
        int hi = hex_digit(text[i * 3]), lo = hex_digit(text[i * 3 + 1]);
        if (hi < 0 || lo < 0 || (i < 5 && text[i * 3 + 2] != ':'))
            return false;
        mac[i] = static_cast<uint8_t>(hi * 16 + lo);
    }
    return true;
}

bool json_get_mac(JsonReader& r, json_object* obj, const char* key, uint8_t* mac) {
    std::string text;
    if (!json_get_string(r, obj, key, &text, 17))
        return false;
    return parse_mac(text, mac) || r.fail(quoted(key) + " must be a MAC address (xx:xx:xx:xx:xx:xx)");
}

bool JsonReader::fail(const std::string& what) {
    if (ok && error != nullptr)
        *error = what;
    ok = false;
    return false;
}

json_object* json_member(json_object* obj, const char* key) {
    json_object* v = nullptr;
    return json_object_object_get_ex(obj, key, &v) ? v : nullptr;
}

bool json_is(json_object* v, json_type t) { return v != nullptr && json_object_is_type(v, t); }

bool json_get_string(JsonReader& r, json_object* obj, const char* key, std::string* out, size_t max) {
    json_object* v = json_member(obj, key);
    if (v == nullptr)
        return false;
    if (!json_is(v, json_type_string))
        return r.fail(quoted(key) + " must be a string");
    size_t len = static_cast<size_t>(json_object_get_string_len(v));
    if (len > max)
        return r.fail(quoted(key) + " is too long (at most " + std::to_string(max) + " characters)");
    out->assign(json_object_get_string(v), len);
    return true;
}

bool json_get_int(JsonReader& r, json_object* obj, const char* key, int64_t lo, int64_t hi, int64_t* out) {
    json_object* v = json_member(obj, key);
    if (v == nullptr)
        return false;
    int64_t n = json_object_get_int64(v);
    if (!json_is(v, json_type_int) || n < lo || n > hi)
        return r.fail(quoted(key) + " must be a whole number from " + std::to_string(lo) + " to " +
                      std::to_string(hi));
    *out = n;
    return true;
}

bool json_get_bool(JsonReader& r, json_object* obj, const char* key, bool* out) {
    json_object* v = json_member(obj, key);
    if (v == nullptr)
        return false;
    if (!json_is(v, json_type_boolean))
        return r.fail(quoted(key) + " must be true or false");
    *out = json_object_get_boolean(v);
    return true;
}

bool json_only_keys(JsonReader& r, json_object* o, const char* const* keys, const char* what) {
    json_object_object_foreach(o, key, val) {
        (void)val;
        const char* const* k = keys;
        while (*k != nullptr && std::strcmp(*k, key) != 0)
            k++;
        if (*k == nullptr)
            return r.fail(std::string("unknown key \"") + key + "\" in " + what);
    }
    return true;
}

json_object* json_array_member(JsonReader& r, json_object* obj, const char* key) {
    json_object* v = json_member(obj, key);
    if (v == nullptr)
        return nullptr;
    if (!json_is(v, json_type_array) || json_object_array_length(v) > kJsonMaxItems) {
        r.fail(quoted(key) + " must be an array of at most " + std::to_string(kJsonMaxItems) + " items");
        return nullptr;
    }
    return v;
}

json_object* json_object_member(JsonReader& r, json_object* obj, const char* key) {
    json_object* v = json_member(obj, key);
    if (v == nullptr)
        return nullptr;
    if (!json_is(v, json_type_object) || json_object_object_length(v) > static_cast<int>(kJsonMaxItems)) {
        r.fail(quoted(key) + " must be an object of at most " + std::to_string(kJsonMaxItems) + " members");
        return nullptr;
    }
    return v;
}

}  // namespace lynd

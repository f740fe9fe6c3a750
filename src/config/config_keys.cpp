#include "config/config_keys.h"

#include <cstdio>
#include <cstring>

namespace {

using S = config_section;
using K = config_kind;
using R = config_range;

constexpr config_key kKeys[] = {
    {S::TOP, "enable", K::BOOL, false, R::AS_IS, 0, 0},
    {S::TOP, "shadow", K::BOOL, false, R::AS_IS, 0, 0},
    {S::TOP, "syslog", K::BOOL, false, R::AS_IS, 0, 0},
    {S::TOP, "log_decisions", K::BOOL, false, R::AS_IS, 0, 0},
    {S::TOP, "log_level", K::INT, false, R::CLAMP, 1, 6},  // the init script's -l
    {S::TOP, "bridges", K::OBJECT, false, R::AS_IS, 0, 0},
    {S::TOP, "param", K::OBJECT, false, R::AS_IS, 0, 0},
    {S::TOP, "interfaces", K::OBJECT, false, R::AS_IS, 0, 0},
    {S::TOP, "record", K::STRING, false, R::AS_IS, 0, 0},
    {S::TOP, "record_size", K::INT, false, R::AS_IS, 0, 0},
    {S::TOP, "clients", K::ANY, false, R::AS_IS, 0, 0},

    {S::BRIDGE, "loop_avoidance", K::BOOL, false, R::AS_IS, 0, 0},
    {S::BRIDGE, "path_selection", K::BOOL, false, R::AS_IS, 0, 0},
    {S::BRIDGE, "hc_enable", K::BOOL, false, R::AS_IS, 0, 0},
    {S::BRIDGE, "follow_re", K::BOOL, false, R::AS_IS, 0, 0},
    {S::BRIDGE, "tcp_sp", K::BOOL, false, R::AS_IS, 0, 0},

    {S::INTERFACE, "type", K::STRING, false, R::AS_IS, 0, 0},
    {S::INTERFACE, "nonrelay", K::BOOL, false, R::AS_IS, 0, 0},
    {S::INTERFACE, "compat_group", K::INT, false, R::LOW8, 0, 255},
    {S::INTERFACE, "priority", K::INT, false, R::LOW8_CLAMP, 0, 10},
    {S::INTERFACE, "path", K::BOOL, false, R::AS_IS, 0, 0},
    {S::INTERFACE, "class", K::INT, false, R::LOW8, 0, 255},
    {S::INTERFACE, "exchange", K::INT, false, R::AS_IS, 0, 0},
    {S::INTERFACE, "ts_vap", K::BOOL, false, R::AS_IS, 0, 0},
    {S::INTERFACE, "support_ts_vlan", K::BOOL, false, R::AS_IS, 0, 0},
    {S::INTERFACE, "switch_vlan_interface", K::BOOL, false, R::AS_IS, 0, 0},
    {S::INTERFACE, "eth_index", K::INT, false, R::UNSIGNED, 0, 0},

    {S::PARAM, "short_period", K::INT, false, R::SECONDS, 0, 4294967},
    {S::PARAM, "period", K::INT, false, R::SECONDS, 0, 4294967},
    {S::PARAM, "cpu_limit", K::BOOL, false, R::AS_IS, 0, 0},
    {S::PARAM, "wlan_enable", K::BOOL, false, R::AS_IS, 0, 0},
    {S::PARAM, "estimate_ack_enable", K::BOOL, false, R::AS_IS, 0, 0},
    {S::PARAM, "util_compensation", K::BOOL, false, R::AS_IS, 0, 0},
    {S::PARAM, "low_threshold", K::INT, false, R::CLAMP, 0, 100},
    {S::PARAM, "high_threshold", K::INT, false, R::CLAMP, 0, 100},
    {S::PARAM, "delta_threshold", K::INT, false, R::CLAMP, 0, 100},
    {S::PARAM, "cpu_threshold", K::INT, false, R::LOW8, 0, 255},
    {S::PARAM, "abn_threshold", K::INT, false, R::LOW8, 0, 255},
    {S::PARAM, "idle_threshold", K::INT, false, R::CLAMP, 0, 1000},
    {S::PARAM, "activate_pkts", K::INT, false, R::CLAMP, 0, 1000},
    {S::PARAM, "adjusted_streams", K::INT, false, R::CLAMP_LOW8, 0, 1000},
    {S::PARAM, "adjusted_ratio", K::INT, false, R::CLAMP, 0, 100},
    {S::PARAM, "reserved_ratio", K::INT, true, R::CLAMP, 0, 100},
    {S::PARAM, "busy_count_threshold", K::INT, false, R::LOW8, 0, 255},
    {S::PARAM, "handle_count", K::INT, false, R::LOW8, 0, 255},
    {S::PARAM, "linkquality_smoothing_factor", K::INT, true, R::AS_IS, 0, 0},
    {S::PARAM, "abnormal_threshold_txrate", K::INT, true, R::AS_IS, 0, 0},
    {S::PARAM, "abnormal_threshold_rxrate", K::INT, true, R::AS_IS, 0, 0},
    {S::PARAM, "weaklink_bestpath_txrate_delta", K::INT, false, R::AS_IS, 0, 0},
    {S::PARAM, "weaklink_threshold_rssi", K::INT, true, R::AS_IS, 0, 0},
    {S::PARAM, "weaklink_threshold_snr", K::INT, true, R::AS_IS, 0, 0},
    {S::PARAM, "weaklink_threshold_rate", K::INT, true, R::AS_IS, 0, 0},
    {S::PARAM, "weaklink_hold_threshold_rssi", K::INT, true, R::AS_IS, 0, 0},
    {S::PARAM, "weaklink_hold_threshold_snr", K::INT, true, R::AS_IS, 0, 0},
    {S::PARAM, "flap_guard", K::ANY, false, R::AS_IS, 0, 0},
};

bool is_band_key(const char* key, const char* base) {
    size_t n = std::strlen(base);
    if (std::strncmp(key, base, n) != 0)
        return false;
    const char* suffix = key + n;
    return std::strcmp(suffix, "_2g") == 0 || std::strcmp(suffix, "_5g") == 0 || std::strcmp(suffix, "_6g") == 0;
}

const char* type_word(json_object* v) {
    switch (json_object_get_type(v)) {
    case json_type_null:
        return "null";
    case json_type_boolean:
        return "a boolean";
    case json_type_double:
        return "a fraction";
    case json_type_int:
        return "a number";
    case json_type_object:
        return "an object";
    case json_type_array:
        return "an array";
    case json_type_string:
        return "a string";
    }
    return "a value";
}

// The value as the file has it, cut for a log line.
const char* shown(json_object* v) {
    return v != nullptr ? json_object_to_json_string_ext(v, JSON_C_TO_STRING_PLAIN) : "null";
}

// `"yes" is a string,` or `null is`: the value and what it is.
void describe(char* out, size_t size, json_object* v) {
    if (v == nullptr)
        std::snprintf(out, size, "null is");
    else
        std::snprintf(out, size, "%.60s is %s,", shown(v), type_word(v));
}

void check_bool(config_report* r, json_object* v, const char* where) {
    if (json_object_is_type(v, json_type_boolean))
        return;
    if (json_object_is_type(v, json_type_int) && (json_object_get_int64(v) == 0 || json_object_get_int64(v) == 1))
        return;
    char what[96];
    describe(what, sizeof what, v);
    config_note(r, config_severity::WARNING, where, "%s not true or false; read as %s", what,
                json_object_get_boolean(v) ? "true" : "false");
}

// The values stored as written.
void valid_range(const config_key& key, int64_t* lo, int64_t* hi) {
    *lo = key.lo;
    *hi = key.hi;
    if (key.range == config_range::CLAMP_LOW8)
        *hi = 255;
    else if (key.range == config_range::AS_IS || key.range == config_range::UNSIGNED) {
        *lo = key.range == config_range::UNSIGNED ? 0 : INT32_MIN;
        *hi = INT32_MAX;
    }
}

void check_int(config_report* r, const config_key& key, json_object* v, const char* where) {
    int32_t read = json_object_get_int(v);
    int64_t used = config_key_effective(key, read);
    bool seconds = key.range == config_range::SECONDS;
    if (!json_object_is_type(v, json_type_int)) {
        char what[96];
        describe(what, sizeof what, v);
        config_note(r, config_severity::WARNING, where, "%s not a whole number; read as %d", what,
                    static_cast<int>(read));
        return;
    }
    int64_t raw = json_object_get_int64(v);
    int64_t lo, hi;
    valid_range(key, &lo, &hi);
    if (raw >= lo && raw <= hi)
        return;
    config_note(r, config_severity::WARNING, where, "%lld is out of range %lld..%lld; using %lld%s",
                static_cast<long long>(raw), static_cast<long long>(lo), static_cast<long long>(hi),
                static_cast<long long>(used), seconds ? " ms" : "");
}

}  // namespace

const config_key* config_key_find(config_section section, const char* key) {
    for (const config_key& k : kKeys) {
        if (k.section != section)
            continue;
        if (k.per_band ? is_band_key(key, k.name) : std::strcmp(key, k.name) == 0)
            return &k;
    }
    return nullptr;
}

int64_t config_key_effective(const config_key& key, int32_t raw) {
    auto clamp = [&](int32_t v) { return v < key.lo ? key.lo : (v > key.hi ? key.hi : v); };
    switch (key.range) {
    case config_range::AS_IS:
        return raw;
    case config_range::CLAMP:
        return clamp(raw);
    case config_range::LOW8:
        return static_cast<uint8_t>(raw);
    case config_range::LOW8_CLAMP:
        return clamp(static_cast<uint8_t>(raw));
    case config_range::CLAMP_LOW8:
        return static_cast<uint8_t>(clamp(raw));
    case config_range::SECONDS:
        return static_cast<uint32_t>(raw) * 1000u;
    case config_range::UNSIGNED:
        return static_cast<uint32_t>(raw);
    }
    return raw;
}

void config_check_members(config_report* r, config_section section, json_object* obj, const char* where) {
    json_object_object_foreach(obj, name, val) {
        char at[CONFIG_WHERE_MAX];
        config_where(at, where, name);
        const config_key* key = config_key_find(section, name);
        if (key == nullptr) {
            config_note(r, config_severity::WARNING, at, "unknown key, ignored");
            continue;
        }
        if (key->kind == config_kind::BOOL)
            check_bool(r, val, at);
        else if (key->kind == config_kind::INT)
            check_int(r, *key, val, at);
    }
}

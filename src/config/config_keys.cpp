#include "config/config_keys.h"

#include <cstdio>
#include <cstring>

namespace {

using S = config_section;
using K = config_kind;
using R = config_range;
using T = config_target;
using V = int64_t;

constexpr config_store kOwner = nullptr;

uint8_t u8(V v) { return static_cast<uint8_t>(v); }

constexpr config_key kKeys[] = {
    {S::TOP, "enable", K::BOOL, false, R::AS_IS, 0, 0, {0}, [](const T& t, int, V v) { t.top->enable = v != 0; }},
    {S::TOP, "shadow", K::BOOL, false, R::AS_IS, 0, 0, {0}, [](const T& t, int, V v) { t.top->shadow = v != 0; }},
    {S::TOP, "syslog", K::BOOL, false, R::AS_IS, 0, 0, {0}, [](const T& t, int, V v) { t.top->syslog = v != 0; }},
    {S::TOP, "log_decisions", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.top->log_decisions = v != 0; }},
    {S::TOP, "log_level", K::INT, false, R::CLAMP, 1, 6, {1}, kOwner},  // the init script's -l
    {S::TOP, "bridges", K::OBJECT, false, R::AS_IS, 0, 0, {0}, kOwner},
    {S::TOP, "param", K::OBJECT, false, R::AS_IS, 0, 0, {0}, kOwner},
    {S::TOP, "interfaces", K::OBJECT, false, R::AS_IS, 0, 0, {0}, kOwner},
    {S::TOP, "record", K::STRING, false, R::AS_IS, 0, 0, {0}, kOwner},        // a file name, checked
    {S::TOP, "record_size", K::INT, false, R::AS_IS, 0, 0, {0}, kOwner},      // with a floor and a cap
    {S::TOP, "clients", K::ANY, false, R::AS_IS, 0, 0, {0}, kOwner},

    {S::BRIDGE, "loop_avoidance", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.bridge->flags |= v != 0 ? BR_FLAG_LOOP_AVOIDANCE : 0; }},
    {S::BRIDGE, "path_selection", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.bridge->flags |= v != 0 ? BR_FLAG_PATH_SELECTION : 0; }},
    {S::BRIDGE, "hc_enable", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.bridge->ps_flags |= v != 0 ? PS_FLAG_HC : 0; }},
    {S::BRIDGE, "follow_re", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.bridge->ps_flags |= v != 0 ? PS_FLAG_FOLLOW_RE : 0; }},
    {S::BRIDGE, "tcp_sp", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.bridge->ps_flags |= v != 0 ? PS_FLAG_TCP_SP : 0; }},

    {S::INTERFACE, "type", K::STRING, false, R::AS_IS, 0, 0, {0}, kOwner},  // refuses the file
    {S::INTERFACE, "nonrelay", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.iface->relay = v == 0; }},
    {S::INTERFACE, "compat_group", K::INT, false, R::LOW8, 0, 255, {255},
     [](const T& t, int, V v) { t.iface->compat_group = u8(v); }},
    {S::INTERFACE, "priority", K::INT, false, R::LOW8_CLAMP, 0, 10, {0}, kOwner},  // its default is by type
    {S::INTERFACE, "path", K::BOOL, false, R::AS_IS, 0, 0, {0}, [](const T& t, int, V v) { t.iface->path = v != 0; }},
    {S::INTERFACE, "class", K::INT, false, R::LOW8, 0, 255, {0}, [](const T& t, int, V v) { t.iface->if_class = u8(v); }},
    {S::INTERFACE, "exchange", K::INT, false, R::AS_IS, 0, 0, {0}, kOwner},  // names the interface
    {S::INTERFACE, "ts_vap", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.iface->ts_vap = v != 0; }},
    {S::INTERFACE, "support_ts_vlan", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.iface->support_ts_vlan = v != 0; }},
    {S::INTERFACE, "switch_vlan_interface", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.iface->switch_vlan_interface = v != 0; }},
    {S::INTERFACE, "eth_index", K::INT, false, R::UNSIGNED, 0, 0, {0},
     [](const T& t, int, V v) { t.iface->eth_index = static_cast<uint32_t>(v); }},

    {S::PARAM, "short_period", K::INT, false, R::SECONDS, 0, 4294967, {0},
     [](const T& t, int, V v) { t.param->short_period = static_cast<uint32_t>(v); }},
    {S::PARAM, "period", K::INT, false, R::SECONDS, 0, 4294967, {0}, kOwner},  // rounded to short_period
    {S::PARAM, "cpu_limit", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.param->cpu_limit = v != 0; }},
    {S::PARAM, "wlan_enable", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.param->wlan_enable = v != 0; }},
    {S::PARAM, "estimate_ack_enable", K::BOOL, false, R::AS_IS, 0, 0, {0},
     [](const T& t, int, V v) { t.param->estimate_ack_enable = v != 0; }},
    {S::PARAM, "util_compensation", K::BOOL, false, R::AS_IS, 0, 0, {0}, kOwner},  // a process-wide switch
    {S::PARAM, "low_threshold", K::INT, false, R::CLAMP, 0, 100, {60},
     [](const T& t, int, V v) { t.param->low_threshold = u8(v); }},
    {S::PARAM, "high_threshold", K::INT, false, R::CLAMP, 0, 100, {70},
     [](const T& t, int, V v) { t.param->high_threshold = u8(v); }},
    {S::PARAM, "delta_threshold", K::INT, false, R::CLAMP, 0, 100, {10},
     [](const T& t, int, V v) { t.param->delta_threshold = u8(v); }},
    {S::PARAM, "cpu_threshold", K::INT, false, R::LOW8, 0, 255, {0},
     [](const T& t, int, V v) { t.param->cpu_threshold = u8(v); }},
    {S::PARAM, "abn_threshold", K::INT, false, R::LOW8, 0, 255, {0},
     [](const T& t, int, V v) { t.param->abn_threshold = u8(v); }},
    {S::PARAM, "idle_threshold", K::INT, false, R::CLAMP, 0, 1000, {10},
     [](const T& t, int, V v) { t.param->idle_threshold = static_cast<uint16_t>(v); }},
    {S::PARAM, "activate_pkts", K::INT, false, R::CLAMP, 0, 1000, {1},
     [](const T& t, int, V v) { t.param->activate_pkts = static_cast<uint16_t>(v); }},
    {S::PARAM, "adjusted_streams", K::INT, false, R::CLAMP_LOW8, 0, 1000, {1},
     [](const T& t, int, V v) { t.param->adjusted_streams = u8(v); }},
    // Its raw value also names the third exchange VLAN: the owner stores that.
    {S::PARAM, "adjusted_ratio", K::INT, false, R::CLAMP, 0, 100, {50},
     [](const T& t, int, V v) { t.param->adjusted_ratio = u8(v); }},
    {S::PARAM, "reserved_ratio", K::INT, true, R::CLAMP, 0, 100, {0, 0, 0},
     [](const T& t, int b, V v) { t.param->reserved_ratio[b] = u8(v); }},
    {S::PARAM, "busy_count_threshold", K::INT, false, R::LOW8, 0, 255, {3},
     [](const T& t, int, V v) { t.param->busy_count_threshold = u8(v); }},
    {S::PARAM, "handle_count", K::INT, false, R::LOW8, 0, 255, {1},
     [](const T& t, int, V v) { t.param->handle_count = u8(v); }},
    {S::PARAM, "linkquality_smoothing_factor", K::INT, true, R::AS_IS, 0, 0, {18, 18, 18},
     [](const T& t, int b, V v) { t.param->linkquality_smoothing_factor[b] = static_cast<int32_t>(v); }},
    // Transmit and receive thresholds share one array, interleaved by band.
    {S::PARAM, "abnormal_threshold_txrate", K::INT, true, R::AS_IS, 0, 0, {0, 13, 13},
     [](const T& t, int b, V v) { t.param->abnormal_threshold_txrate_rxrate[b * 2] = static_cast<int32_t>(v); }},
    {S::PARAM, "abnormal_threshold_rxrate", K::INT, true, R::AS_IS, 0, 0, {0, 13, 13},
     [](const T& t, int b, V v) { t.param->abnormal_threshold_txrate_rxrate[b * 2 + 1] = static_cast<int32_t>(v); }},
    {S::PARAM, "weaklink_bestpath_txrate_delta", K::INT, false, R::AS_IS, 0, 0, {30},
     [](const T& t, int, V v) { t.param->weaklink_bestpath_txrate_delta = static_cast<int32_t>(v); }},
    {S::PARAM, "weaklink_threshold_rssi", K::INT, true, R::AS_IS, 0, 0, {-85, -85, -85},
     [](const T& t, int b, V v) { t.param->weaklink_threshold_rssi[b] = static_cast<int32_t>(v); }},
    {S::PARAM, "weaklink_threshold_snr", K::INT, true, R::AS_IS, 0, 0, {15, 15, 15},
     [](const T& t, int b, V v) { t.param->weaklink_threshold_snr[b] = static_cast<int32_t>(v); }},
    {S::PARAM, "weaklink_threshold_rate", K::INT, true, R::AS_IS, 0, 0, {100, 100, 100},
     [](const T& t, int b, V v) { t.param->weaklink_threshold_rate[b] = static_cast<int32_t>(v); }},
    {S::PARAM, "weaklink_hold_threshold_rssi", K::INT, true, R::AS_IS, 0, 0, {-83, -83, -83},
     [](const T& t, int b, V v) { t.param->weaklink_hold_threshold_rssi[b] = static_cast<int32_t>(v); }},
    {S::PARAM, "weaklink_hold_threshold_snr", K::INT, true, R::AS_IS, 0, 0, {17, 17, 17},
     [](const T& t, int b, V v) { t.param->weaklink_hold_threshold_snr[b] = static_cast<int32_t>(v); }},
    {S::PARAM, "flap_guard", K::ANY, false, R::AS_IS, 0, 0, {0}, kOwner},  // checked member by member
};

constexpr const char* kBandSuffix[BAND_COUNT] = {"_2g", "_5g", "_6g"};

// One value of key, as the file has it or by default, after its range rule.
int64_t read_value(const config_key& key, json_object* obj, const char* name, int band) {
    json_object* v = nullptr;
    if (obj == nullptr || !json_object_is_type(obj, json_type_object) || !json_object_object_get_ex(obj, name, &v))
        return key.def[band];
    if (key.kind == config_kind::BOOL)
        return json_object_get_boolean(v) != 0 ? 1 : 0;
    return config_key_effective(key, json_object_get_int(v));
}

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

const config_key* config_keys_begin() { return kKeys; }
const config_key* config_keys_end() { return kKeys + sizeof kKeys / sizeof kKeys[0]; }

void config_load_section(config_section section, json_object* obj, const config_target& t) {
    for (const config_key& k : kKeys) {
        if (k.section != section || k.store == nullptr)
            continue;
        if (!k.per_band) {
            k.store(t, 0, read_value(k, obj, k.name, 0));
            continue;
        }
        for (int b = 0; b < BAND_COUNT; b++) {
            char name[64];
            std::snprintf(name, sizeof name, "%s%s", k.name, kBandSuffix[b]);
            k.store(t, b, read_value(k, obj, name, b));
        }
    }
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

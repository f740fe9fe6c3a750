#include "config/config_steering.h"

#include <cstring>

#include "config/json_read.h"
#include "core/log.h"

namespace {

struct guard_member {
    const char* key;
    uint32_t conf_flap_guard::*ms;
};

const guard_member kGuardSeconds[] = {
    {"min_dwell", &conf_flap_guard::min_dwell_ms},
    {"return_window", &conf_flap_guard::return_window_ms},
    {"return_hold", &conf_flap_guard::return_hold_ms},
    {"preferred_return", &conf_flap_guard::preferred_return_ms},
};

// A whole number in 0..hi, or def with a WARN naming the member.
int32_t whole_in(json_object* v, const char* key, int32_t hi, int32_t def) {
    if (!json_object_is_type(v, json_type_int)) {
        LYND_WARN("flap_guard.%s is not a whole number, ignored", key);
        return def;
    }
    int64_t n = json_object_get_int64(v);
    if (n < 0 || n > hi) {
        LYND_WARN("flap_guard.%s = %lld is outside 0..%d, ignored", key, static_cast<long long>(n),
                  static_cast<int>(hi));
        return def;
    }
    return static_cast<int32_t>(n);
}

bool guard_seconds(conf_flap_guard* g, const char* key, json_object* v) {
    for (const guard_member& m : kGuardSeconds) {
        if (std::strcmp(m.key, key) == 0) {
            g->*m.ms = static_cast<uint32_t>(whole_in(v, key, FLAP_GUARD_MAX_S, 0)) * 1000u;
            return true;
        }
    }
    return false;
}

constexpr const char* kPinNames[IF_TYPE_MAX] = {"ethernet", "2.4g", "5g", "5g_2", "6g"};

bool load_rule(conf_client_rule* r, json_object* item, uint32_t k) {
    json_object* v;
    if (!json_is_object(item) || !json_has(item, "mac", &v) || !json_object_is_type(v, json_type_string) ||
        lynd_parse_mac_text(json_object_get_string(v), ':', r->mac) != LYND_MAC_LEN ||
        std::strlen(json_object_get_string(v)) != LYND_MAC_TEXT_LEN - 1) {
        LYND_WARN("clients[%u].mac is missing or not xx:xx:xx:xx:xx:xx, entry ignored", k);
        return false;
    }
    r->pin = IF_TYPE_MAX;
    r->exclude = json_bool_or(item, "exclude", false);
    if (json_has(item, "pin", &v)) {
        const char* name = json_object_is_type(v, json_type_string) ? json_object_get_string(v) : "";
        r->pin = config_pin_type(name);
        if (r->pin == IF_TYPE_MAX)
            LYND_WARN("clients[%u].pin is not one of ethernet, 2.4g, 5g, 5g_2, 6g: not pinned", k);
    }
    if (r->exclude && r->pin != IF_TYPE_MAX) {
        LYND_WARN("clients[%u] is both pinned and excluded: excluded", k);
        r->pin = IF_TYPE_MAX;
    }
    return r->exclude || r->pin != IF_TYPE_MAX;
}

// Kept in MAC order: every period looks every client up.
void insert_sorted(conf_client_rules* out, const conf_client_rule& r) {
    uint32_t i = out->n++;
    for (; i > 0 && std::memcmp(out->rules[i - 1].mac, r.mac, LYND_MAC_LEN) > 0; i--)
        out->rules[i] = out->rules[i - 1];
    out->rules[i] = r;
}

}  // namespace

uint8_t config_pin_type(const char* name) {
    if (std::strcmp(name, "2g") == 0)
        return IF_TYPE_2G;
    for (uint8_t t = 0; t < IF_TYPE_MAX; t++)
        if (std::strcmp(name, kPinNames[t]) == 0)
            return t;
    return IF_TYPE_MAX;
}

void config_load_flap_guard(conf_flap_guard* out, json_object* param) {
    *out = conf_flap_guard{};
    json_object* g;
    if (!json_has(param, "flap_guard", &g))
        return;
    if (!json_is_object(g)) {
        LYND_WARN("flap_guard is not an object, ignored");
        return;
    }
    json_object_object_foreach(g, key, val) {
        if (guard_seconds(out, key, val))
            continue;
        if (std::strcmp(key, "moves_per_hour") == 0)
            out->moves_per_hour = static_cast<uint8_t>(whole_in(val, key, FLAP_BUDGET_MAX, 0));
        else
            LYND_WARN("flap_guard.%s is not a known member, ignored", key);
    }
    if ((out->return_window_ms == 0) != (out->return_hold_ms == 0))
        LYND_WARN("flap_guard.return_window and flap_guard.return_hold work only together: no return rule");
}

void config_load_clients(conf_client_rules* out, json_object* root) {
    *out = conf_client_rules{};
    json_object* list;
    if (!json_has(root, "clients", &list))
        return;
    if (!json_object_is_type(list, json_type_array)) {
        LYND_WARN("clients is not an array, ignored");
        return;
    }
    size_t n = json_object_array_length(list);
    for (size_t k = 0; k < n; k++) {
        if (out->n == LYND_MAX_CLIENT_RULES) {
            LYND_WARN("clients: more than %d entries, the rest ignored", LYND_MAX_CLIENT_RULES);
            return;
        }
        conf_client_rule r{};
        if (!load_rule(&r, json_object_array_get_idx(list, k), static_cast<uint32_t>(k)))
            continue;
        if (conf_client_rule_find(*out, r.mac) != nullptr) {
            LYND_WARN("clients[%u] repeats a MAC, entry ignored", static_cast<uint32_t>(k));
            continue;
        }
        insert_sorted(out, r);
    }
}

const conf_client_rule* conf_client_rule_find(const conf_client_rules& r, const uint8_t* mac) {
    uint32_t lo = 0, hi = r.n < LYND_MAX_CLIENT_RULES ? r.n : LYND_MAX_CLIENT_RULES;
    while (lo < hi) {
        uint32_t mid = lo + (hi - lo) / 2;
        int c = std::memcmp(r.rules[mid].mac, mac, LYND_MAC_LEN);
        if (c == 0)
            return &r.rules[mid];
        if (c < 0)
            lo = mid + 1;
        else
            hi = mid;
    }
    return nullptr;
}

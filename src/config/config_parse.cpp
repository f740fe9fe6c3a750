#include <cstdio>
#include <cstring>

#include "core/vlan_name.h"
#include "config/config.h"
#include "config/config_param.h"
#include "config/config_record.h"
#include "config/json_read.h"
#include "core/log.h"

namespace {

constexpr const char* kTypeNames[IF_TYPE_MAX] = {"ethernet", "2.4g", "5g", "5g_2", "6g"};

// Names longer than a name field are cut, never stored unterminated.
void copy_name(char* out, const char* name) {
    std::memset(out, 0, LYND_NAME_LEN);
    std::strncpy(out, name, LYND_NAME_LEN - 1);
    if (std::strlen(name) >= LYND_NAME_LEN)
        LYND_WARN("name %s is longer than %d characters, cut to %s", name, LYND_NAME_LEN - 1, out);
}

// The section of this name as an object, or null; anything else is reported.
json_object* section(json_object* root, const char* key) {
    json_object* v;
    if (!json_has(root, key, &v))
        return nullptr;
    if (!json_is_object(v)) {
        LYND_ERR("\"%s\" is not an object, ignored", key);
        return nullptr;
    }
    return v;
}

void load_bridges(lynd_config* conf, json_object* bridges) {
    std::memset(conf->bridges, 0, sizeof conf->bridges);
    json_object_object_foreach(bridges, name, val) {
        if (conf->n_bridges == LYND_MAX_BRIDGES) {
            LYND_WARN("too many bridges");
            break;
        }
        conf_bridge& br = conf->bridges[conf->n_bridges++];
        copy_name(br.name, name);
        br.flags |= json_bool_or(val, "loop_avoidance", false) ? BR_FLAG_LOOP_AVOIDANCE : 0;
        br.flags |= json_bool_or(val, "path_selection", false) ? BR_FLAG_PATH_SELECTION : 0;
        br.ps_flags |= json_bool_or(val, "hc_enable", false) ? PS_FLAG_HC : 0;
        br.ps_flags |= json_bool_or(val, "follow_re", false) ? PS_FLAG_FOLLOW_RE : 0;
        br.ps_flags |= json_bool_or(val, "tcp_sp", false) ? PS_FLAG_TCP_SP : 0;
        if (br.ps_flags & PS_FLAG_HC)
            LYND_WARN("br %s ps mode set to HC", br.name);
    }
}

uint32_t type_from(json_object* iface) {
    json_object* v;
    if (!json_has(iface, "type", &v) || !json_object_is_type(v, json_type_string))
        return IF_TYPE_MAX;
    const char* s = json_object_get_string(v);
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++)
        if (std::strcmp(s, kTypeNames[t]) == 0)
            return t;
    return IF_TYPE_MAX;
}

// An exchange interface is named after its VLAN: the member name less its
// last character, then the id. False when that VLAN is not in use.
bool exchange_name(const lynd_config* conf, const char* member, int32_t kind, char* out) {
    const uint32_t* vids = conf->param.exchange_vid;
    uint32_t vid = kind == 2 ? vids[1] : (kind == 3 ? vids[2] : vids[0]);
    if (vid == 0)
        return false;
    char base[32] = {};
    size_t keep = std::strlen(member);
    keep = keep > 0 ? keep - 1 : 0;
    std::memcpy(base, member, keep < sizeof base - 1 ? keep : sizeof base - 1);
    lynd_get_vlan_name(out, base, vid, false);
    if (keep + static_cast<size_t>(std::snprintf(nullptr, 0, "%u", vid)) >= LYND_NAME_LEN)
        LYND_WARN("name of %s on vlan %u is longer than %d characters, cut to %s", member, vid, LYND_NAME_LEN - 1,
                  out);
    return true;
}

// The low 8 bits first, so -1 (255) and 300 (44) both end up at 10.
uint8_t priority_from(json_object* iface, uint32_t type) {
    json_object* v;
    if (!json_has(iface, "priority", &v))
        return static_cast<uint8_t>(default_priority[type]);
    return static_cast<uint8_t>(clamp_i32(static_cast<uint8_t>(json_object_get_int(v)), 0, 10));
}

void fill_interface(conf_interface& r, json_object* val, uint32_t type) {
    r.type = type;
    r.relay = !json_bool_or(val, "nonrelay", false);
    r.compat_group = static_cast<uint8_t>(json_int_or(val, "compat_group", 255));
    r.priority = priority_from(val, type);
    r.path = json_bool_or(val, "path", false);
    r.if_class = static_cast<uint8_t>(json_int_or(val, "class", 0));
    r.ts_vap = json_bool_or(val, "ts_vap", false);
    r.support_ts_vlan = json_bool_or(val, "support_ts_vlan", false);
    r.switch_vlan_interface = json_bool_or(val, "switch_vlan_interface", false);
}

config_parse_result load_interfaces(lynd_config* conf, json_object* interfaces) {
    std::memset(conf->interfaces, 0, sizeof conf->interfaces);
    json_object_object_foreach(interfaces, name, val) {
        if (conf->n_interfaces == LYND_MAX_INTERFACES) {
            LYND_WARN("too many interfaces");
            break;
        }
        conf_interface& r = conf->interfaces[conf->n_interfaces];
        r.eth_index = static_cast<uint32_t>(json_int_or(val, "eth_index", 0));
        json_object* exchange;
        if (!json_has(val, "exchange", &exchange)) {
            copy_name(r.name, name);
        } else if (!exchange_name(conf, name, json_object_get_int(exchange), r.name)) {
            r = conf_interface{};  // the next member takes this record as new
            continue;
        }
        uint32_t type = type_from(val);
        if (type == IF_TYPE_MAX)
            return config_parse_result::BAD_INTERFACE_TYPE;
        fill_interface(r, val, type);
        conf->n_interfaces++;
    }
    return config_parse_result::OK;
}

// The document's top-level object, or null when the text is anything else.
json_object* parse_object(const char* text, size_t len) {
    json_tokener* tok = json_tokener_new();
    if (tok == nullptr)
        return nullptr;
    json_object* root = json_tokener_parse_ex(tok, text, static_cast<int>(len));
    bool complete = json_tokener_get_error(tok) == json_tokener_success;
    json_tokener_free(tok);
    if (root != nullptr && complete && json_is_object(root))
        return root;
    json_object_put(root);
    return nullptr;
}

}  // namespace

config_parse_result config_parse(lynd_config* conf, const char* text, size_t len) {
    config_reset_util_compensation();
    json_object* root = len <= LYND_CONFIG_MAX_SIZE ? parse_object(text, len) : nullptr;
    if (root == nullptr)
        return config_parse_result::BAD_JSON;
    conf->n_bridges = 0;
    conf->n_interfaces = 0;
    conf->enable = json_bool_or(root, "enable", false);
    conf->shadow = json_bool_or(root, "shadow", false);
    config_load_record(conf, root);
    config_parse_result rc = config_parse_result::OK;
    if (json_object* bridges = section(root, "bridges"))
        load_bridges(conf, bridges);
    // Before the interfaces: their names may use the exchange VLANs.
    if (json_object* param = section(root, "param"))
        config_load_param(conf, param);
    if (json_object* interfaces = section(root, "interfaces"))
        rc = load_interfaces(conf, interfaces);
    json_object_put(root);
    return rc;
}

#include <cstdio>
#include <cstring>

#include "core/vlan_name.h"
#include "config/config.h"
#include "config/config_keys.h"
#include "config/config_param.h"
#include "config/config_steering.h"
#include "config/config_record.h"
#include "config/json_read.h"
#include "core/log.h"

namespace {

// The table loaders log for the load.
constexpr const char* kLoadFn = "config_load";
constexpr const char* kTypeNames[IF_TYPE_MAX] = {"ethernet", "2.4g", "5g", "5g_2", "6g"};

// Names longer than a name field are cut, never stored unterminated.
void copy_name(config_report* r, char* out, const char* name, const char* where) {
    std::memset(out, 0, LYND_NAME_LEN);
    std::strncpy(out, name, LYND_NAME_LEN - 1);
    if (std::strlen(name) >= LYND_NAME_LEN)
        config_note(r, config_severity::WARNING, where, "name longer than %d characters, cut to %s", LYND_NAME_LEN - 1,
                    out);
}

// The section of this name as an object, or null; anything else is reported.
json_object* section(config_report* r, json_object* root, const char* key) {
    json_object* v;
    if (!json_has(root, key, &v))
        return nullptr;
    if (!json_is_object(v)) {
        config_note(r, config_severity::ERROR, key, "is not an object, ignored");
        return nullptr;
    }
    return v;
}

// A member of a section that is not an object reads as one without keys.
void check_entry(config_report* r, config_section kind, json_object* val, const char* where) {
    if (json_is_object(val))
        config_check_members(r, kind, val, where);
    else
        config_note(r, config_severity::WARNING, where, "is not an object; read as {}");
}

// The first member a full table leaves out, and how many follow it.
void note_surplus(config_report* r, const char* section, const char* first, int rest, int max) {
    char where[CONFIG_WHERE_MAX];
    config_where(where, section, first);
    config_note(r, config_severity::WARNING, where, "ignored with the %d after it: at most %d %s", rest, max, section);
}

int members_after(json_object* obj, const char* name) {
    int n = -1;
    json_object_object_foreach(obj, key, val) {
        (void)val;
        if (n >= 0)
            n++;
        else if (std::strcmp(key, name) == 0)
            n = 0;
    }
    return n < 0 ? 0 : n;
}

void load_bridges(lynd_config* conf, json_object* bridges, config_report* r) {
    std::memset(conf->bridges, 0, sizeof conf->bridges);
    json_object_object_foreach(bridges, name, val) {
        if (conf->n_bridges == LYND_MAX_BRIDGES) {
            LYND_WARN_AS(kLoadFn, "too many bridges");
            note_surplus(r, "bridges", name, members_after(bridges, name), LYND_MAX_BRIDGES);
            break;
        }
        char where[CONFIG_WHERE_MAX];
        config_where(where, "bridges", name);
        check_entry(r, config_section::BRIDGE, val, where);
        conf_bridge& br = conf->bridges[conf->n_bridges++];
        copy_name(r, br.name, name, where);
        config_target t{};
        t.bridge = &br;
        config_load_section(config_section::BRIDGE, val, t);
        if (br.ps_flags & PS_FLAG_HC)
            LYND_WARN_AS(kLoadFn, "br %s ps mode set to HC", br.name);
    }
}

uint32_t type_from(json_object* iface, config_report* r, const char* where) {
    json_object* v;
    char at[CONFIG_WHERE_MAX];
    config_where(at, where, "type");
    if (!json_is_object(iface)) {
        config_note(r, config_severity::REFUSED, where, "is not an object; an interface needs a type");
        return IF_TYPE_MAX;
    }
    if (!json_has(iface, "type", &v)) {
        config_note(r, config_severity::REFUSED, at, "missing; one of ethernet, 2.4g, 5g, 5g_2, 6g is needed");
        return IF_TYPE_MAX;
    }
    const char* s = json_object_is_type(v, json_type_string) ? json_object_get_string(v) : "";
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++)
        if (std::strcmp(s, kTypeNames[t]) == 0)
            return t;
    config_note(r, config_severity::REFUSED, at, "%.60s is not one of ethernet, 2.4g, 5g, 5g_2, 6g",
                json_object_to_json_string_ext(v, JSON_C_TO_STRING_PLAIN));
    return IF_TYPE_MAX;
}

// An exchange interface is named after its VLAN: the member name less its
// last character, then the id. False when that VLAN is not in use.
bool exchange_name(const lynd_config* conf, const char* member, int32_t kind, char* out, config_report* r,
                   const char* where) {
    const uint32_t* vids = conf->param.exchange_vid;
    uint32_t vid = kind == 2 ? vids[1] : (kind == 3 ? vids[2] : vids[0]);
    if (vid == 0) {
        config_note(r, config_severity::WARNING, where, "exchange %d has no VLAN in use; interface skipped",
                    static_cast<int>(kind));
        return false;
    }
    char base[32] = {};
    size_t keep = std::strlen(member);
    keep = keep > 0 ? keep - 1 : 0;
    std::memcpy(base, member, keep < sizeof base - 1 ? keep : sizeof base - 1);
    lynd_get_vlan_name(out, base, vid, false);
    if (keep + static_cast<size_t>(std::snprintf(nullptr, 0, "%u", vid)) >= LYND_NAME_LEN)
        config_note(r, config_severity::WARNING, where, "name on vlan %u is longer than %d characters, cut to %s", vid,
                    LYND_NAME_LEN - 1, out);
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
    config_target t{};
    t.iface = &r;
    config_load_section(config_section::INTERFACE, val, t);
    r.priority = priority_from(val, type);
}

config_parse_result load_interfaces(lynd_config* conf, json_object* interfaces, config_report* rep) {
    std::memset(conf->interfaces, 0, sizeof conf->interfaces);
    json_object_object_foreach(interfaces, name, val) {
        if (conf->n_interfaces == LYND_MAX_INTERFACES) {
            LYND_WARN_AS(kLoadFn, "too many interfaces");
            note_surplus(rep, "interfaces", name, members_after(interfaces, name), LYND_MAX_INTERFACES);
            break;
        }
        char where[CONFIG_WHERE_MAX];
        config_where(where, "interfaces", name);
        if (json_is_object(val))
            config_check_members(rep, config_section::INTERFACE, val, where);
        conf_interface& r = conf->interfaces[conf->n_interfaces];
        json_object* exchange;
        if (!json_has(val, "exchange", &exchange)) {
            copy_name(rep, r.name, name, where);
        } else if (!exchange_name(conf, name, json_object_get_int(exchange), r.name, rep, where)) {
            r = conf_interface{};  // the next member takes this record as new
            continue;
        }
        uint32_t type = type_from(val, rep, where);
        if (type == IF_TYPE_MAX)
            return config_parse_result::BAD_INTERFACE_TYPE;
        fill_interface(r, val, type);
        conf->n_interfaces++;
    }
    return config_parse_result::OK;
}

// Line and column of offset in text, both from 1.
void place_of(const char* text, size_t offset, int* line, int* column) {
    *line = 1;
    *column = 1;
    for (size_t i = 0; i < offset; i++) {
        if (text[i] == '\n') {
            ++*line;
            *column = 1;
        } else {
            ++*column;
        }
    }
}

bool trailing_text(const char* text, size_t len) {
    for (size_t i = 0; i < len; i++)
        if (text[i] != ' ' && text[i] != '\t' && text[i] != '\n' && text[i] != '\r')
            return true;
    return false;
}

// The document's top-level value, or null when the text is not a JSON
// document or is null (then the report says why, with json-c's reason and
// the place). A value other than an object has no members to read.
json_object* parse_object(const char* text, size_t len, config_report* r) {
    json_tokener* tok = json_tokener_new();
    if (tok == nullptr) {
        config_note(r, config_severity::REFUSED, "file", "no memory to parse it");
        return nullptr;
    }
    json_object* root = json_tokener_parse_ex(tok, text, static_cast<int>(len));
    json_tokener_error err = json_tokener_get_error(tok);
    size_t end = json_tokener_get_parse_end(tok);
    json_tokener_free(tok);
    char where[CONFIG_WHERE_MAX];
    int line, column;
    place_of(text, end < len ? end : len, &line, &column);
    std::snprintf(where, sizeof where, "line %d, column %d", line, column);
    if (root != nullptr && err == json_tokener_success) {
        if (trailing_text(text + end, len - end))
            config_note(r, config_severity::WARNING, where, "text after the end of the document, ignored");
        if (!json_is_object(root))
            config_note(r, config_severity::WARNING, "file", "the top level is %s, not an object: nothing is read",
                        json_type_to_name(json_object_get_type(root)));
        return root;
    }
    if (err == json_tokener_continue || (err == json_tokener_success && root == nullptr && len == 0))
        config_note(r, config_severity::REFUSED, where, "%s",
                    len == 0 ? "the file is empty" : "unexpected end of data");
    else if (err != json_tokener_success)
        config_note(r, config_severity::REFUSED, where, "%s", json_tokener_error_desc(err));
    else
        config_note(r, config_severity::REFUSED, "file", "the top level is %s, not an object",
                    root == nullptr ? "null" : json_type_to_name(json_object_get_type(root)));
    json_object_put(root);
    return nullptr;
}

}  // namespace

const char* config_if_type_name(uint32_t type) { return type < IF_TYPE_MAX ? kTypeNames[type] : "unknown"; }

config_parse_result config_parse(lynd_config* conf, const char* text, size_t len, config_report* report) {
    config_reset_util_compensation();
    if (len >= LYND_CONFIG_MAX_SIZE) {
        config_note(report, config_severity::REFUSED, "file", "%zu bytes; a configuration must be under %zu (256 KiB)",
                    len, LYND_CONFIG_MAX_SIZE);
        return config_parse_result::BAD_JSON;
    }
    json_object* root = parse_object(text, len, report);
    if (root == nullptr)
        return config_parse_result::BAD_JSON;
    if (json_is_object(root))
        config_check_members(report, config_section::TOP, root, "");
    conf->n_bridges = 0;
    conf->n_interfaces = 0;
    config_target top{};
    top.top = conf;
    config_load_section(config_section::TOP, root, top);
    config_load_record(conf, root, report);
    config_parse_result rc = config_parse_result::OK;
    if (json_object* bridges = section(report, root, "bridges"))
        load_bridges(conf, bridges, report);
    // Before the interfaces: their names may use the exchange VLANs.
    // A "param" of another kind is still loaded: no member is found in it,
    // so every member takes its default.
    json_object* param;
    if (json_has(root, "param", &param)) {
        if (json_is_object(param))
            config_check_members(report, config_section::PARAM, param, "param");
        else
            config_note(report, config_severity::WARNING, "param", "is not an object; every member takes its default");
        config_load_param(conf, param);
    }
    if (json_object* interfaces = section(report, root, "interfaces"))
        rc = load_interfaces(conf, interfaces, report);
    config_load_clients(&conf->clients, root);
    json_object_put(root);
    return rc;
}

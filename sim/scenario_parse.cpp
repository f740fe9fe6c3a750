#include <json-c/json.h>

#include <cstring>

#include "sim/netlink_craft.h"
#include "sim/scenario.h"
#include "config/config.h"

namespace lynd {

namespace {

constexpr size_t kMaxText = 4096;
constexpr size_t kMaxItems = 4096;

// Collects the first problem; later checks become no-ops.
struct Reader {
    std::string* error;
    bool ok = true;
    bool fail(const std::string& what) {
        if (ok && error != nullptr)
            *error = what;
        ok = false;
        return false;
    }
};

json_object* member(json_object* obj, const char* key) {
    json_object* v = nullptr;
    return json_object_object_get_ex(obj, key, &v) ? v : nullptr;
}

bool is(json_object* v, json_type t) { return v != nullptr && json_object_is_type(v, t); }

bool get_string(Reader& r, json_object* obj, const char* key, std::string* out, size_t max = kMaxText) {
    json_object* v = member(obj, key);
    if (v == nullptr)
        return false;
    if (!is(v, json_type_string))
        return r.fail(std::string("\"") + key + "\" must be a string");
    if (static_cast<size_t>(json_object_get_string_len(v)) > max)
        return r.fail(std::string("\"") + key + "\" is too long");
    out->assign(json_object_get_string(v), static_cast<size_t>(json_object_get_string_len(v)));
    return true;
}

bool get_int(Reader& r, json_object* obj, const char* key, int64_t lo, int64_t hi, int64_t* out) {
    json_object* v = member(obj, key);
    if (v == nullptr)
        return false;
    int64_t n = json_object_get_int64(v);
    if (!is(v, json_type_int) || n < lo || n > hi)
        return r.fail(std::string("\"") + key + "\" must be a whole number from " + std::to_string(lo) + " to " +
                      std::to_string(hi));
    *out = n;
    return true;
}

// UCI values are text; numbers and booleans stand for their JSON spelling.
std::string value_text(json_object* v) {
    return is(v, json_type_string) ? json_object_get_string(v) : json_object_to_json_string(v);
}

json_object* array_member(Reader& r, json_object* obj, const char* key) {
    json_object* v = member(obj, key);
    if (v == nullptr)
        return nullptr;
    if (!is(v, json_type_array) || json_object_array_length(v) > kMaxItems) {
        r.fail(std::string("\"") + key + "\" must be an array of at most " + std::to_string(kMaxItems) + " items");
        return nullptr;
    }
    return v;
}

json_object* object_member(Reader& r, json_object* obj, const char* key) {
    json_object* v = member(obj, key);
    if (v != nullptr && !is(v, json_type_object)) {
        r.fail(std::string("\"") + key + "\" must be an object");
        return nullptr;
    }
    return v;
}

bool parse_mac(const std::string& text, uint8_t* mac) {
    unsigned b[6];
    char tail;
    if (std::sscanf(text.c_str(), "%2x:%2x:%2x:%2x:%2x:%2x%c", &b[0], &b[1], &b[2], &b[3], &b[4], &b[5], &tail) != 6)
        return false;
    for (int i = 0; i < 6; i++)
        mac[i] = static_cast<uint8_t>(b[i]);
    return true;
}

void parse_interfaces(Reader& r, json_object* list, Scenario* out) {
    for (size_t i = 0; list != nullptr && r.ok && i < json_object_array_length(list); i++) {
        json_object* o = json_object_array_get_idx(list, i);
        SimInterface iface;
        int64_t idx = 0;
        std::string mac;
        if (!is(o, json_type_object) || !get_string(r, o, "name", &iface.name, 15) ||
            !get_int(r, o, "ifindex", 1, 0xffff, &idx)) {
            r.fail("each interface needs a \"name\" of at most 15 characters and an \"ifindex\"");
            return;
        }
        iface.ifindex = static_cast<unsigned>(idx);
        if (get_string(r, o, "mac", &mac) && !parse_mac(mac, iface.mac))
            r.fail("bad \"mac\" of interface " + iface.name);
        out->interfaces.push_back(iface);
    }
}

void parse_bridges(Reader& r, json_object* list, Scenario* out) {
    for (size_t i = 0; list != nullptr && r.ok && i < json_object_array_length(list); i++) {
        json_object* o = json_object_array_get_idx(list, i);
        ScenarioBridge br;
        if (!is(o, json_type_object) || !get_string(r, o, "name", &br.name, 15)) {
            r.fail("each bridge needs a \"name\" of at most 15 characters");
            return;
        }
        if (json_object* a = member(o, "active"))
            br.active = json_object_get_boolean(a);
        json_object* ports = array_member(r, o, "ports");
        for (size_t p = 0; ports != nullptr && p < json_object_array_length(ports); p++) {
            json_object* port = json_object_array_get_idx(ports, p);
            if (!is(port, json_type_string) || json_object_get_string_len(port) > 15) {
                r.fail("ports of bridge " + br.name + " must be interface names");
                return;
            }
            br.ports.emplace_back(json_object_get_string(port));
        }
        out->bridges.push_back(br);
    }
}

void parse_node(Reader& r, json_object* node, Scenario* out) {
    if (json_object* uci = object_member(r, node, "uci")) {
        json_object_object_foreach(uci, key, val) out->uci[key] = value_text(val);
    }
    if (json_object* tools = object_member(r, node, "tools")) {
        json_object_object_foreach(tools, cmdline, val) {
            ScenarioTool t{cmdline, "", 0};
            int64_t status = 0;
            if (is(val, json_type_string))
                t.output = json_object_get_string(val);
            else if (!is(val, json_type_object))
                r.fail("tool \"" + t.cmdline + "\" needs an output string or {\"output\", \"status\"}");
            else {
                get_string(r, val, "output", &t.output);
                if (get_int(r, val, "status", 0, 255, &status))
                    t.status = static_cast<int>(status);
            }
            out->tools.push_back(t);
        }
    }
    if (json_object* failures = object_member(r, node, "bridge_failures")) {
        json_object_object_foreach(failures, call, val) {
            if (!is(val, json_type_int))
                r.fail(std::string("bridge failure of ") + call + " must be a whole number");
            out->bridge_failures[call] = json_object_get_int(val);
        }
    }
    parse_interfaces(r, array_member(r, node, "interfaces"), out);
    parse_bridges(r, array_member(r, node, "bridges"), out);
}

void parse_timeline_entry(Reader& r, json_object* o, const Scenario& sc, TimelineEntry* e) {
    std::string ifname;
    if (json_object* data = member(o, "data"); get_string(r, o, "ubus", &e->name)) {
        e->kind = TimelineKind::UBUS;
        e->data = data == nullptr ? "{}" : json_object_to_json_string_ext(data, JSON_C_TO_STRING_PLAIN);
        if (data != nullptr && !is(data, json_type_object))
            r.fail("\"data\" of a ubus event must be an object");
    } else if (json_object* nl = object_member(r, o, "netlink")) {
        e->kind = TimelineKind::NETLINK;
        std::string problem;
        if (!craft_bridge_datagram(nl, &e->data, &problem))
            r.fail("netlink entry: " + problem);
    } else if (get_string(r, o, "station_expired", &ifname, 15)) {
        e->kind = TimelineKind::STATION_EXPIRED;
        e->name = ifname;
        bool known = false;
        for (const auto& i : sc.interfaces)
            known = known || i.name == ifname;
        if (!known)
            r.fail("station_expired names an interface the node does not have: " + ifname);
    } else if (r.ok) {
        r.fail("timeline entry of an unknown kind (ubus, netlink or station_expired)");
    }
}

void parse_timeline(Reader& r, json_object* list, Scenario* out) {
    for (size_t i = 0; list != nullptr && r.ok && i < json_object_array_length(list); i++) {
        json_object* o = json_object_array_get_idx(list, i);
        TimelineEntry e;
        int64_t at = 0;
        if (!is(o, json_type_object) || !get_int(r, o, "at", 0, out->duration_s, &at)) {
            r.fail("timeline entry " + std::to_string(i) + " needs an \"at\" within the duration");
            return;
        }
        e.at_ms = at * 1000;
        parse_timeline_entry(r, o, *out, &e);
        out->timeline.push_back(e);
    }
}

void parse_expectation(Reader& r, json_object* o, Expectation* e) {
    int64_t n = 0;
    if (get_string(r, o, "log_contains", &e->text)) {
        e->kind = ExpectKind::LOG_CONTAINS;
    } else if (get_string(r, o, "log_absent", &e->text)) {
        e->kind = ExpectKind::LOG_ABSENT;
    } else if (get_string(r, o, "call", &e->text)) {
        e->kind = ExpectKind::CALL;
    } else if (get_string(r, o, "file", &e->text)) {
        e->kind = ExpectKind::FILE_EQUALS;
        if (!get_string(r, o, "equals", &e->equals))
            r.fail("a \"file\" expectation needs \"equals\"");
    } else if (get_int(r, o, "exit", 0, 255, &n)) {
        e->kind = ExpectKind::EXIT;
        e->value = static_cast<int>(n);
    } else if (r.ok) {
        r.fail("expectation of an unknown kind (log_contains, log_absent, call, file, exit)");
    }
    if (get_int(r, o, "count", 0, 1000000, &n))
        e->count = static_cast<int>(n);
}

void parse_expect(Reader& r, json_object* list, Scenario* out) {
    for (size_t i = 0; list != nullptr && r.ok && i < json_object_array_length(list); i++) {
        json_object* o = json_object_array_get_idx(list, i);
        Expectation e;
        int64_t at = 0;
        if (!is(o, json_type_object)) {
            r.fail("expectation " + std::to_string(i) + " must be an object");
            return;
        }
        if (get_int(r, o, "at", 0, out->duration_s, &at))
            e.at_ms = at * 1000;
        parse_expectation(r, o, &e);
        if (e.kind == ExpectKind::EXIT && e.at_ms >= 0)
            r.fail("an \"exit\" expectation has no \"at\"");
        out->expect.push_back(e);
    }
}

void parse_top(Reader& r, json_object* root, Scenario* out) {
    get_string(r, root, "name", &out->name, 64);
    get_int(r, root, "duration", 0, 7 * 24 * 3600, &out->duration_s);
    get_int(r, root, "seed", INT32_MIN, INT32_MAX, &out->seed);
    if (json_object* config = object_member(r, root, "config")) {
        out->has_config = true;
        out->config_text = json_object_to_json_string_ext(config, JSON_C_TO_STRING_PRETTY);
        if (out->config_text.size() > LYND_CONFIG_MAX_SIZE)
            r.fail("\"config\" is larger than the daemon reads");
    }
    json_object* args = array_member(r, root, "args");
    for (size_t i = 0; args != nullptr && r.ok && i < json_object_array_length(args); i++) {
        json_object* a = json_object_array_get_idx(args, i);
        if (!is(a, json_type_string))
            r.fail("\"args\" must be strings");
        else
            out->args.emplace_back(json_object_get_string(a));
    }
    if (json_object* node = object_member(r, root, "node"))
        parse_node(r, node, out);
    parse_timeline(r, array_member(r, root, "timeline"), out);
    parse_expect(r, array_member(r, root, "expect"), out);
}

}  // namespace

bool scenario_parse(const char* text, size_t len, Scenario* out, std::string* error) {
    *out = Scenario{};
    Reader r{error};
    json_tokener* tok = json_tokener_new();
    json_object* root = nullptr;
    bool complete = false;
    if (tok != nullptr && len <= 16 * 1024 * 1024) {
        root = json_tokener_parse_ex(tok, text, static_cast<int>(len));
        complete = json_tokener_get_error(tok) == json_tokener_success;
    }
    json_tokener_free(tok);
    if (root == nullptr || !complete || !is(root, json_type_object))
        r.fail("not a JSON object");
    else
        parse_top(r, root, out);
    json_object_put(root);
    return r.ok;
}

std::string describe(const Expectation& e) {
    static const char* const kinds[] = {"log_contains", "log_absent", "exit", "call", "file"};
    std::string s = kinds[static_cast<int>(e.kind)];
    s += e.kind == ExpectKind::EXIT ? " " + std::to_string(e.value) : " \"" + e.text + "\"";
    if (e.count >= 0)
        s += " count " + std::to_string(e.count);
    if (e.at_ms >= 0)
        s += " at " + std::to_string(e.at_ms / 1000) + " s";
    return s;
}

}  // namespace lynd

#include <json-c/json.h>

#include <cctype>
#include <cstdint>
#include <cstring>

#include "config/config.h"
#include "sim/scenario/json_reader.h"
#include "sim/scenario/scenario.h"
#include "sim/scenario/scenario_clients.h"
#include "sim/scenario/scenario_expect.h"
#include "sim/scenario/scenario_messages.h"
#include "sim/scenario/scenario_radios.h"
#include "sim/scenario/scenario_squat.h"

namespace lynd {

namespace {

constexpr size_t kMaxName = 64;
constexpr size_t kMaxIfname = 15;
constexpr size_t kMaxUciPath = 255;
constexpr size_t kMaxCmdline = 512;
constexpr size_t kMaxToolOutput = 64 * 1024;
constexpr size_t kMaxArgs = 64;
constexpr size_t kMaxFilePath = 255;
constexpr size_t kMaxFileSize = 1024 * 1024;
constexpr size_t kMaxScenarioSize = 16 * 1024 * 1024;
constexpr size_t kMaxTimelineEntries = 100000;
constexpr size_t kMaxDescription = 1024;

using Reader = JsonReader;

std::string quoted(const std::string& s) { return "\"" + s + "\""; }

void parse_interfaces(Reader& r, json_object* list, Scenario* out) {
    for (size_t i = 0; list != nullptr && r.ok && i < json_object_array_length(list); i++) {
        json_object* o = json_object_array_get_idx(list, i);
        SimInterface iface;
        int64_t idx = 0;
        std::string mac;
        if (!json_is(o, json_type_object) || !json_get_string(r, o, "name", &iface.name, kMaxIfname) ||
            !json_get_int(r, o, "ifindex", 1, 0xffff, &idx)) {
            r.fail("each interface needs a \"name\" of at most 15 characters and an \"ifindex\" from 1 to 65535");
            return;
        }
        iface.ifindex = static_cast<unsigned>(idx);
        if (json_get_string(r, o, "mac", &mac) && !parse_mac(mac, iface.mac))
            r.fail("bad \"mac\" of interface " + iface.name + " (xx:xx:xx:xx:xx:xx)");
        out->interfaces.push_back(iface);
    }
}

void parse_bridges(Reader& r, json_object* list, Scenario* out) {
    for (size_t i = 0; list != nullptr && r.ok && i < json_object_array_length(list); i++) {
        json_object* o = json_object_array_get_idx(list, i);
        ScenarioBridge br;
        if (!json_is(o, json_type_object) || !json_get_string(r, o, "name", &br.name, kMaxIfname)) {
            r.fail("each bridge needs a \"name\" of at most 15 characters");
            return;
        }
        (void)json_get_bool(r, o, "active", &br.active);
        json_object* ports = json_array_member(r, o, "ports");
        for (size_t p = 0; ports != nullptr && p < json_object_array_length(ports); p++) {
            json_object* port = json_object_array_get_idx(ports, p);
            if (!json_is(port, json_type_string) || json_object_get_string_len(port) > static_cast<int>(kMaxIfname)) {
                r.fail("ports of bridge " + br.name + " must be interface names");
                return;
            }
            br.ports.emplace_back(json_object_get_string(port));
        }
        out->bridges.push_back(br);
    }
}

// UCI holds text; numbers and booleans stand for their JSON spelling.
void parse_uci(Reader& r, json_object* uci, Scenario* out) {
    json_object_object_foreach(uci, path, val) {
        bool scalar = json_is(val, json_type_string) || json_is(val, json_type_int) ||
                      json_is(val, json_type_double) || json_is(val, json_type_boolean);
        if (std::strlen(path) > kMaxUciPath || !scalar) {
            r.fail("uci " + quoted(path) + " needs a path of at most 255 characters and a string, number or boolean");
            return;
        }
        std::string text = json_is(val, json_type_string) ? json_object_get_string(val) : json_object_to_json_string(val);
        if (text.size() > kJsonMaxText) {
            r.fail("uci value of " + quoted(path) + " is too long");
            return;
        }
        out->uci[path] = text;
    }
}

void parse_tool(Reader& r, const char* cmdline, json_object* val, ScenarioTool* t) {
    t->cmdline = cmdline;
    int64_t status = 0;
    if (t->cmdline.empty() || t->cmdline.size() > kMaxCmdline) {
        r.fail("a tool's command line must have 1 to " + std::to_string(kMaxCmdline) + " characters");
    } else if (json_is(val, json_type_string)) {
        t->output = json_object_get_string(val);
        if (t->output.size() > kMaxToolOutput)
            r.fail("output of tool " + quoted(t->cmdline) + " is too long");
    } else if (json_is(val, json_type_object)) {
        static const char* const keys[] = {"output", "status", "hang", "endless", nullptr};
        (void)json_only_keys(r, val, keys, ("tool " + quoted(t->cmdline)).c_str());
        (void)json_get_string(r, val, "output", &t->output, kMaxToolOutput);
        if (json_get_int(r, val, "status", 0, 255, &status))
            t->status = static_cast<int>(status);
        bool hang = false, endless = false;
        (void)json_get_bool(r, val, "hang", &hang);
        (void)json_get_bool(r, val, "endless", &endless);
        if (hang && endless)
            r.fail("tool " + quoted(t->cmdline) + " cannot both hang and print without end");
        t->mode = hang ? SimToolMode::HANGS : endless ? SimToolMode::ENDLESS : SimToolMode::ANSWERS;
    } else {
        r.fail("tool " + quoted(t->cmdline) + " needs an output string or {\"output\", \"status\", \"hang\", \"endless\"}");
    }
}

// An absolute path that stays below the node's root, and raw text.
void parse_files(Reader& r, json_object* files, Scenario* out) {
    json_object_object_foreach(files, path, val) {
        std::string p = path;
        bool climbs = (p + "/").find("/../") != std::string::npos;
        if (p.size() < 2 || p[0] != '/' || p.size() > kMaxFilePath || climbs) {
            r.fail("file " + quoted(path) + " needs an absolute path of at most 255 characters without \"..\"");
            return;
        }
        if (!json_is(val, json_type_string) || json_object_get_string_len(val) > static_cast<int>(kMaxFileSize)) {
            r.fail("file " + quoted(path) + " needs its content as a string of at most 1 MiB");
            return;
        }
        out->files[p] = std::string(json_object_get_string(val), static_cast<size_t>(json_object_get_string_len(val)));
    }
}

void parse_node(Reader& r, json_object* node, Scenario* out) {
    if (json_object* files = json_object_member(r, node, "files"))
        parse_files(r, files, out);
    if (json_object* uci = json_object_member(r, node, "uci"))
        parse_uci(r, uci, out);
    if (json_object* tools = json_object_member(r, node, "tools")) {
        json_object_object_foreach(tools, cmdline, val) {
            ScenarioTool t;
            parse_tool(r, cmdline, val, &t);
            out->tools.push_back(t);
        }
    }
    if (json_object* failures = json_object_member(r, node, "bridge_failures")) {
        json_object_object_foreach(failures, call, val) {
            if (json_is(val, json_type_object) || json_is(val, json_type_array))
                parse_failure_rules(r, call, val, out);
            else if (!json_is(val, json_type_int))
                r.fail(std::string("bridge failure of ") + call + " must be a whole number, a rule or a list of rules");
            else
                out->bridge_failures[call] = json_object_get_int(val);
        }
    }
    parse_interfaces(r, json_array_member(r, node, "interfaces"), out);
    parse_bridges(r, json_array_member(r, node, "bridges"), out);
    parse_node_cpu(r, node, out);
    if (json_object* fs = json_object_member(r, node, "trace_fs")) {
        (void)json_get_int(r, fs, "avail", 0, INT64_MAX, &out->fs_avail);
        (void)json_get_int(r, fs, "total", 0, INT64_MAX, &out->fs_total);
    }
    parse_node_mesh(r, node, out);
    parse_node_squatters(r, node, out);
    parse_node_file_squats(r, node, out);
    parse_hc_model(r, node, out);
}

void parse_timeline_entry(Reader& r, json_object* o, Scenario* out, TimelineEntry* e) {
    const Scenario& sc = *out;
    std::string ifname;
    if (json_object* data = json_member(o, "data"); json_get_string(r, o, "ubus", &e->name, kMaxName)) {
        e->kind = TimelineKind::UBUS;
        e->data = data == nullptr ? "{}" : json_object_to_json_string_ext(data, JSON_C_TO_STRING_PLAIN);
        if (data != nullptr && !json_is(data, json_type_object))
            r.fail("\"data\" of a ubus event must be an object");
    } else if (json_member(o, "netlink") != nullptr) {
        parse_bridge_message(r, o, sc, e);
    } else if (json_member(o, "rtnetlink") != nullptr) {
        parse_kernel_link(r, o, sc, e);
    } else if (json_member(o, "station_expired") != nullptr) {
        parse_station_expiry(r, o, sc, e);
    } else if (json_get_string(r, o, "link", &ifname, kMaxIfname)) {
        e->kind = TimelineKind::LINK;
        e->name = ifname;
        json_object* set = json_member(o, "set");
        SimLink scratch;
        if (apply_link_fields(r, set, &scratch))
            e->data = json_object_to_json_string_ext(set, JSON_C_TO_STRING_PLAIN);
    } else if (json_get_string(r, o, "ubus_call", &e->name, kMaxName)) {
        e->kind = TimelineKind::UBUS_CALL;
        if (!json_get_string(r, o, "method", &e->method, kMaxName))
            r.fail("a \"ubus_call\" names its \"method\"");
        e->data = data == nullptr ? "{}" : json_object_to_json_string_ext(data, JSON_C_TO_STRING_PLAIN);
        if (data != nullptr && !json_is(data, json_type_object))
            r.fail("\"data\" of a ubus call must be an object");
    } else if (parse_client_timeline(r, o, e->at_ms, out)) {
        e->kind = TimelineKind::CLIENT;
    } else if (json_get_string(r, o, "bus", &e->name, kMaxName)) {
        e->kind = TimelineKind::BUS;
        if (e->name != "down" && e->name != "up")
            r.fail("\"bus\" is \"down\" or \"up\"");
    } else if (json_get_string(r, o, "file", &e->name, kMaxName)) {
        e->kind = TimelineKind::FILE;
        if (!json_get_string(r, o, "content", &e->data, LYND_CONFIG_MAX_SIZE))
            r.fail("a \"file\" entry gives its \"content\" as a string");
    } else if (json_object* uci = json_object_member(r, o, "uci")) {
        e->kind = TimelineKind::UCI;
        Scenario scratch;
        parse_uci(r, uci, &scratch);
        e->data = json_object_to_json_string_ext(uci, JSON_C_TO_STRING_PLAIN);
    } else if (parse_file_squat(r, o, e)) {
    } else if (r.ok) {
        r.fail("timeline entry of an unknown kind (ubus, ubus_call, netlink, rtnetlink, station_expired, link, uci, "
               "bus, file, squat, client_join or client_leave)");
    }
}

void push_timeline_entry(Reader& r, json_object* o, int64_t at, Scenario* out) {
    TimelineEntry e;
    e.at_ms = at * 1000;
    parse_timeline_entry(r, o, out, &e);
    out->timeline.push_back(e);
}

// The event, or each of "events" at its "after", again every "every" seconds
// from "at" up to "until" (default: the end of the run).
void parse_repeat(Reader& r, json_object* o, json_object* rep, int64_t at, Scenario* out) {
    static const char* const keys[] = {"every", "until", nullptr};
    int64_t every = 0;
    int64_t until = out->duration_s;
    if (!json_is(rep, json_type_object) || !json_only_keys(r, rep, keys, "\"repeat\"") ||
        !json_get_int(r, rep, "every", 1, out->duration_s, &every)) {
        if (r.ok)
            r.fail("\"repeat\" is an object with \"every\" (seconds) and an optional \"until\"");
        return;
    }
    json_get_int(r, rep, "until", at, out->duration_s, &until);
    static const char* const list_keys[] = {"at", "repeat", "events", nullptr};
    json_object* events = json_array_member(r, o, "events");
    if (events != nullptr && !json_only_keys(r, o, list_keys, "a timeline entry that repeats \"events\""))
        return;
    size_t per_round = events == nullptr ? 1 : json_object_array_length(events);
    size_t rounds = static_cast<size_t>((until - at) / every + 1);
    if (per_round > (kMaxTimelineEntries - out->timeline.size()) / rounds) {
        r.fail("\"repeat\" makes more than " + std::to_string(kMaxTimelineEntries) + " timeline entries");
        return;
    }
    for (int64_t t = at; r.ok && t <= until; t += every) {
        for (size_t i = 0; events != nullptr && r.ok && i < per_round; i++) {
            json_object* ev = json_object_array_get_idx(events, i);
            int64_t after = 0;
            if (!json_is(ev, json_type_object) || !json_get_int(r, ev, "after", 0, every - 1, &after))
                r.fail("each of \"events\" needs an \"after\" below \"every\"");
            else if (t + after <= until)
                push_timeline_entry(r, ev, t + after, out);
        }
        if (events == nullptr)
            push_timeline_entry(r, o, t, out);
    }
}

void parse_timeline(Reader& r, json_object* list, Scenario* out) {
    for (size_t i = 0; list != nullptr && r.ok && i < json_object_array_length(list); i++) {
        json_object* o = json_object_array_get_idx(list, i);
        int64_t at = 0;
        if (!json_is(o, json_type_object) || !json_get_int(r, o, "at", 0, out->duration_s, &at)) {
            r.fail("timeline entry " + std::to_string(i) + " needs an \"at\" within the duration");
            return;
        }
        if (json_object* rep = json_member(o, "repeat"))
            parse_repeat(r, o, rep, at, out);
        else if (out->timeline.size() >= kMaxTimelineEntries)
            r.fail("more than " + std::to_string(kMaxTimelineEntries) + " timeline entries");
        else
            push_timeline_entry(r, o, at, out);
    }
}

// {"client": MAC, "path": NAME} or {"client": MAC, "moves": N, "from": S, "to": S}.
void parse_client_expectation(Reader& r, json_object* o, Expectation* e) {
    uint8_t mac[6];
    int64_t n = 0;
    if (!json_get_mac(r, o, "client", mac))
        r.fail("a \"client\" expectation names the client by its MAC");
    if (json_get_string(r, o, "path", &e->equals, kMaxIfname)) {
        e->kind = ExpectKind::CLIENT_PATH;
    } else if (json_get_int(r, o, "moves", 0, 1000000, &n)) {
        e->kind = ExpectKind::CLIENT_MOVES;
        e->count = static_cast<int>(n);
    } else if (r.ok) {
        r.fail("a \"client\" expectation needs \"path\" or \"moves\"");
    }
}

void parse_expectation(Reader& r, json_object* o, Expectation* e) {
    int64_t n = 0;
    if (json_get_string(r, o, "log_contains", &e->text)) {
        e->kind = ExpectKind::LOG_CONTAINS;
    } else if (json_get_string(r, o, "log_absent", &e->text)) {
        e->kind = ExpectKind::LOG_ABSENT;
    } else if (json_get_string(r, o, "call", &e->text)) {
        e->kind = ExpectKind::CALL;
    } else if (json_get_string(r, o, "run", &e->text, kMaxCmdline)) {
        e->kind = ExpectKind::RUN;
    } else if (json_get_string(r, o, "file", &e->text)) {
        e->kind = ExpectKind::FILE_EQUALS;
        parse_file_expectation(r, o, e);
    } else if (parse_state_expectation(r, o, e)) {
    } else if (json_get_string(r, o, "client", &e->text, kMaxName)) {
        parse_client_expectation(r, o, e);
    } else if (json_get_int(r, o, "exit", 0, 255, &n)) {
        e->kind = ExpectKind::EXIT;
        e->value = static_cast<int>(n);
    } else if (r.ok) {
        r.fail("expectation of an unknown kind (log_contains, log_absent, call, run, file, client, bridge, "
               "wds_deleted, path_state, preferred, samples, pool, ubus_reply, steering_calls, exit)");
    }
    if (json_get_int(r, o, "count", 0, 1000000, &n))
        e->count = static_cast<int>(n);
    parse_window(r, o, e);
}

void parse_expect(Reader& r, json_object* list, Scenario* out) {
    for (size_t i = 0; list != nullptr && r.ok && i < json_object_array_length(list); i++) {
        json_object* o = json_object_array_get_idx(list, i);
        Expectation e;
        int64_t at = 0;
        if (!json_is(o, json_type_object)) {
            r.fail("expectation " + std::to_string(i) + " must be an object");
            return;
        }
        if (json_get_int(r, o, "at", 0, out->duration_s, &at))
            e.at_ms = at * 1000;
        parse_expectation(r, o, &e);
        if (e.kind == ExpectKind::EXIT && e.at_ms >= 0)
            r.fail("an \"exit\" expectation has no \"at\"");
        out->expect.push_back(e);
    }
}

void parse_args(Reader& r, json_object* args, Scenario* out) {
    size_t n = args == nullptr ? 0 : json_object_array_length(args);
    if (n > kMaxArgs)
        r.fail("\"args\" holds more than " + std::to_string(kMaxArgs) + " arguments");
    for (size_t i = 0; r.ok && i < n; i++) {
        json_object* a = json_object_array_get_idx(args, i);
        if (!json_is(a, json_type_string) || static_cast<size_t>(json_object_get_string_len(a)) > kJsonMaxText)
            r.fail("\"args\" must be strings of at most " + std::to_string(kJsonMaxText) + " characters");
        else
            out->args.emplace_back(json_object_get_string(a));
    }
}

void parse_top(Reader& r, json_object* root, Scenario* out) {
    json_get_string(r, root, "name", &out->name, kMaxName);
    json_get_string(r, root, "description", &out->description, kMaxDescription);
    json_get_int(r, root, "duration", 0, 7 * 24 * 3600, &out->duration_s);
    json_get_int(r, root, "seed", INT32_MIN, INT32_MAX, &out->seed);
    if (json_object* config = json_object_member(r, root, "config")) {
        out->has_config = true;
        out->config_text = json_object_to_json_string_ext(config, JSON_C_TO_STRING_PRETTY);
        if (out->config_text.size() > LYND_CONFIG_MAX_SIZE)
            r.fail("\"config\" is larger than the daemon reads");
    }
    parse_args(r, json_array_member(r, root, "args"), out);
    if (json_object* node = json_object_member(r, root, "node"))
        parse_node(r, node, out);
    parse_config_paths(json_member(root, "config"), out);
    parse_radios(r, root, out);
    parse_clients(r, root, out);
    parse_timeline(r, json_array_member(r, root, "timeline"), out);
    parse_expect(r, json_array_member(r, root, "expect"), out);
}

bool only_blanks(const char* text, size_t from, size_t len) {
    for (size_t i = from; i < len; i++)
        if (!std::isspace(static_cast<unsigned char>(text[i])))
            return false;
    return true;
}

// The document's root, or null with the reason recorded.
json_object* parse_root(Reader& r, const char* text, size_t len) {
    if (len > kMaxScenarioSize) {
        r.fail("larger than " + std::to_string(kMaxScenarioSize) + " bytes");
        return nullptr;
    }
    json_tokener* tok = json_tokener_new();
    if (tok == nullptr) {
        r.fail("out of memory");
        return nullptr;
    }
    json_object* root = json_tokener_parse_ex(tok, text, static_cast<int>(len));
    json_tokener_error err = json_tokener_get_error(tok);
    size_t end = json_tokener_get_parse_end(tok);
    json_tokener_free(tok);
    if (root == nullptr || err != json_tokener_success) {
        const char* why = err == json_tokener_continue ? "unexpected end of text" : json_tokener_error_desc(err);
        r.fail(std::string("not a JSON object: ") + why);
    } else if (!json_is(root, json_type_object)) {
        r.fail("not a JSON object: the scenario must be { ... }");
    } else if (!only_blanks(text, end, len)) {
        r.fail("not a JSON object: text after its end");
    } else {
        return root;
    }
    json_object_put(root);
    return nullptr;
}

}  // namespace

bool scenario_parse(const char* text, size_t len, Scenario* out, std::string* error) {
    *out = Scenario{};
    Reader r{error};
    if (json_object* root = parse_root(r, text, len)) {
        parse_top(r, root, out);
        json_object_put(root);
    }
    return r.ok;
}

namespace {

// The path-selection expectations carry their wanted value outside `text`.
std::string what_of(const Expectation& e) {
    switch (e.kind) {
        case ExpectKind::EXIT:
        case ExpectKind::POOL:
        case ExpectKind::STEERING:
            return " " + std::to_string(e.value);
        case ExpectKind::PREFERRED:
            return " \"" + e.equals + "\"";
        case ExpectKind::PATH_STATE:
        case ExpectKind::SAMPLES:
            return "";
        default:
            return " \"" + e.text + "\"";
    }
}

}  // namespace

std::string describe(const Expectation& e) {
    static const char* const kinds[] = {"log_contains", "log_absent", "exit",        "call",      "file",
                                        "run",          "client",     "client",      "bridge",    "wds_deleted",
                                        "path_state",   "preferred",  "samples",     "pool",
                                        "ubus_reply",   "steering_calls"};
    std::string s = kinds[static_cast<int>(e.kind)];
    s += what_of(e);
    if (e.kind == ExpectKind::CLIENT_PATH)
        s += " path \"" + e.equals + "\"";
    if (e.kind == ExpectKind::CLIENT_MOVES)
        s += " moves";
    if (e.kind == ExpectKind::UBUS_REPLY && e.value >= 0)
        s += " status " + std::to_string(e.value);
    if (e.kind == ExpectKind::UBUS_REPLY && !e.port.empty())
        s += " " + e.port + " = " + e.equals;
    else if (!e.port.empty())
        s += " port " + e.port;
    for (const auto& kv : e.settings)
        s += " " + kv.first + "=" + kv.second;
    if (e.absent)
        s += " absent";
    if (e.writes >= 0)
        s += " writes " + std::to_string(e.writes);
    if (e.count >= 0)
        s += " count " + std::to_string(e.count);
    if (e.at_ms >= 0)
        s += " at " + std::to_string(e.at_ms / 1000) + " s";
    return s;
}

}  // namespace lynd

#include "sim/scenario/scenario_clients.h"

#include <cstring>

#include "config/json_read.h"

namespace lynd {

namespace {

constexpr size_t kMaxIfname = 15;
constexpr size_t kMaxClients = 512;  // past the daemon's 256, to try its limit
constexpr int64_t kMaxMbps = 100000;

bool parse_client(JsonReader& r, json_object* o, int64_t duration_s, SimClient* c) {
    int64_t mbps = 0, join = 0, leave = -1;
    if (!json_is(o, json_type_object) || !json_get_mac(r, o, "mac", c->mac) ||
        !json_get_string(r, o, "port", &c->port, kMaxIfname))
        return r.fail("each client needs a \"mac\" and an access \"port\"");
    (void)json_get_string(r, o, "path", &c->path, kMaxIfname);
    if (json_get_int(r, o, "mbps", 0, kMaxMbps, &mbps))
        c->mbps = static_cast<uint32_t>(mbps);
    (void)json_get_int(r, o, "join", 0, duration_s, &join);
    if (json_get_int(r, o, "leave", 0, duration_s, &leave) && leave < join)
        return r.fail("a client leaves before it joins");
    c->join_ms = join * 1000;
    c->leave_ms = leave < 0 ? -1 : leave * 1000;
    return r.ok;
}

}  // namespace

void parse_clients(JsonReader& r, json_object* root, Scenario* out) {
    json_object* list = json_array_member(r, root, "clients");
    if (list == nullptr)
        return;
    if (json_object_array_length(list) > kMaxClients) {
        r.fail("\"clients\" holds more than " + std::to_string(kMaxClients));
        return;
    }
    for (size_t i = 0; r.ok && i < json_object_array_length(list); i++) {
        SimClient c;
        if (parse_client(r, json_object_array_get_idx(list, i), out->duration_s, &c))
            out->clients.push_back(c);
    }
}

bool parse_client_timeline(JsonReader& r, json_object* o, int64_t at_ms, Scenario* out) {
    if (json_object* join = json_member(o, "client_join")) {
        SimClient c;
        if (parse_client(r, join, out->duration_s, &c)) {
            c.join_ms = at_ms;
            if (c.leave_ms >= 0 && c.leave_ms < at_ms)
                r.fail("a client leaves before it joins");
            out->clients.push_back(c);
        }
        return true;
    }
    uint8_t mac[6];
    if (json_member(o, "client_leave") == nullptr)
        return false;
    if (!json_get_mac(r, o, "client_leave", mac))
        return r.fail("\"client_leave\" names a client by its MAC");
    for (auto& c : out->clients) {
        if (std::memcmp(c.mac, mac, 6) == 0 && c.join_ms <= at_ms) {
            c.leave_ms = at_ms;
            return true;
        }
    }
    return r.fail("\"client_leave\" names a client that has not joined by then");
}

void parse_hc_model(JsonReader& r, json_object* node, Scenario* out) {
    static const char* const keys[] = {"own_entry", "refill", "announce_refills", nullptr};
    json_object* hc = json_object_member(r, node, "hc_table");
    if (hc == nullptr || !json_only_keys(r, hc, keys, "\"hc_table\""))
        return;
    (void)json_get_bool(r, hc, "own_entry", &out->hc_model.own_entry);
    (void)json_get_bool(r, hc, "refill", &out->hc_model.refill);
    (void)json_get_bool(r, hc, "announce_refills", &out->hc_model.announce_refills);
}

void parse_config_paths(json_object* config, Scenario* out) {
    auto file = out->files.find("/etc/lynd.json");
    json_object* own = file != out->files.end() ? json_tokener_parse(file->second.c_str()) : nullptr;
    json_object* ifaces = nullptr;
    out->hc_model.paths.clear();
    if (file != out->files.end())
        config = own;
    if (json_is(config, json_type_object) && json_object_object_get_ex(config, "interfaces", &ifaces) &&
        json_is(ifaces, json_type_object)) {
        json_object_object_foreach(ifaces, name, val) {
            if (json_is(val, json_type_object) && json_bool_or(val, "path", false))
                out->hc_model.paths.emplace_back(name);
        }
    }
    json_object_put(own);
}

}  // namespace lynd

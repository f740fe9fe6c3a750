#include "sim/scenario/scenario_radios.h"

#include <cstdint>

namespace lynd {

namespace {

constexpr size_t kMaxIfname = 15;
constexpr size_t kMaxStations = 64;
constexpr int64_t kMaxMbps = 100000;

template <typename T>
void get_field(JsonReader& r, json_object* o, const char* key, int64_t lo, int64_t hi, T* out) {
    int64_t v = 0;
    if (json_get_int(r, o, key, lo, hi, &v))
        *out = static_cast<T>(v);
}

bool apply_station_fields(JsonReader& r, json_object* o, SimStation* st) {
    static const char* const keys[] = {"mac", "txrate", "rxrate", "rssi", "noise", "idle", nullptr};
    if (!json_is(o, json_type_object) || !json_only_keys(r, o, keys, "a station"))
        return r.fail("each station must be an object with a \"mac\"");
    if (!json_get_mac(r, o, "mac", st->mac))
        return r.fail("each station needs a \"mac\"");
    get_field(r, o, "txrate", 0, UINT16_MAX, &st->txrate);
    get_field(r, o, "rxrate", 0, UINT16_MAX, &st->rxrate);
    get_field(r, o, "rssi", INT8_MIN, INT8_MAX, &st->rssi);
    get_field(r, o, "noise", -200, 0, &st->noise);
    get_field(r, o, "idle", 0, UINT16_MAX, &st->idle);
    return r.ok;
}

void parse_links(JsonReader& r, json_object* links, Scenario* out) {
    json_object_object_foreach(links, ifname, val) {
        SimLink link;
        if (std::string(ifname).size() > kMaxIfname) {
            r.fail(std::string("link name ") + ifname + " is longer than 15 characters");
            return;
        }
        if (!apply_link_fields(r, val, &link))
            return;
        out->links[ifname] = link;
    }
}

void parse_stations(JsonReader& r, json_object* stations, Scenario* out) {
    json_object_object_foreach(stations, ifname, list) {
        if (std::string(ifname).size() > kMaxIfname || !json_is(list, json_type_array) ||
            json_object_array_length(list) > kMaxStations) {
            r.fail(std::string("stations of ") + ifname + " must be an array of at most 64, under a name of at most 15 characters");
            return;
        }
        std::vector<SimStation>& v = out->stations[ifname];
        for (size_t i = 0; i < json_object_array_length(list); i++) {
            SimStation st;
            if (!apply_station_fields(r, json_object_array_get_idx(list, i), &st))
                return;
            v.push_back(st);
        }
    }
}

// Replies as the ubus tool prints them: one member a line, tab-indented.
std::string ubus_reply(const std::string& key1, const std::string& value1, const std::string& key2,
                       const std::string& value2) {
    return "{\n\t\"" + key1 + "\": " + value1 + ",\n\t\"" + key2 + "\": \"" + value2 + "\"\n}\n";
}

void add_tool(Scenario* out, const std::string& cmdline, const std::string& output) {
    for (const auto& t : out->tools)
        if (t.cmdline == cmdline)
            return;  // a reply the scenario fixed itself wins
    out->tools.push_back(ScenarioTool{cmdline, output, 0});
}

}  // namespace

bool apply_link_fields(JsonReader& r, json_object* o, SimLink* link) {
    static const char* const keys[] = {"up",      "peer",     "txrate",   "rxrate",  "rssi",
                                       "noise",   "idle",     "util",     "tx_bytes", "rx_bytes",
                                       "tx_mbps", "rx_mbps",  "stalled",  "count_keepalive", nullptr};
    if (!json_is(o, json_type_object))
        return r.fail("a link must be an object");
    if (!json_only_keys(r, o, keys, "a link"))
        return false;
    (void)json_get_bool(r, o, "up", &link->up);
    (void)json_get_bool(r, o, "stalled", &link->stalled);
    (void)json_get_bool(r, o, "count_keepalive", &link->count_keepalive);
    (void)json_get_mac(r, o, "peer", link->peer);
    get_field(r, o, "txrate", 0, UINT16_MAX, &link->txrate);
    get_field(r, o, "rxrate", 0, UINT16_MAX, &link->rxrate);
    get_field(r, o, "rssi", INT8_MIN, INT8_MAX, &link->rssi);
    get_field(r, o, "noise", -200, 0, &link->noise);
    get_field(r, o, "idle", 0, UINT16_MAX, &link->idle);
    get_field(r, o, "util", 0, 100, &link->util);
    get_field(r, o, "tx_bytes", 0, INT64_MAX / 2, &link->tx_bytes);
    get_field(r, o, "rx_bytes", 0, INT64_MAX / 2, &link->rx_bytes);
    get_field(r, o, "tx_mbps", 0, kMaxMbps, &link->tx_mbps);
    get_field(r, o, "rx_mbps", 0, kMaxMbps, &link->rx_mbps);
    return r.ok;
}

void parse_radios(JsonReader& r, json_object* root, Scenario* out) {
    if (json_object* links = json_object_member(r, root, "links"))
        parse_links(r, links, out);
    if (json_object* stations = json_object_member(r, root, "stations"))
        parse_stations(r, stations, out);
}

void parse_node_cpu(JsonReader& r, json_object* node, Scenario* out) {
    json_object* list = json_array_member(r, node, "cpu");
    for (size_t i = 0; list != nullptr && r.ok && i < json_object_array_length(list); i++) {
        json_object* o = json_object_array_get_idx(list, i);
        int64_t at = 0, pct = 0;
        if (!json_is(o, json_type_object) || !json_get_int(r, o, "at", 0, out->duration_s, &at) ||
            !json_get_int(r, o, "percent", 0, 100, &pct)) {
            r.fail("each cpu figure needs an \"at\" within the duration and a \"percent\" from 0 to 100");
            return;
        }
        if (!out->cpu.empty() && at * 1000 < out->cpu.back().at_ms) {
            r.fail("cpu figures must be in time order");
            return;
        }
        out->cpu.push_back(CpuPoint{at * 1000, static_cast<uint32_t>(pct)});
    }
}

void parse_node_mesh(JsonReader& r, json_object* node, Scenario* out) {
    json_object* mesh = json_object_member(r, node, "mesh");
    if (mesh == nullptr)
        return;
    static const char* const keys[] = {"controller", "eth_bh_if", nullptr};
    uint8_t mac[6];
    std::string text, bh;
    if (!json_only_keys(r, mesh, keys, "\"mesh\""))
        return;
    if (json_get_mac(r, mesh, "controller", mac) && json_get_string(r, mesh, "controller", &text))
        add_tool(out, "ubus call map meshd {\"action\":\"findcontroller\"}", ubus_reply("ret", "0", "mac", text));
    if (json_get_string(r, mesh, "eth_bh_if", &bh, kMaxIfname))
        add_tool(out, "ubus call map get_bh_eth", ubus_reply("success", "0", "eth_bh_if", bh));
}

}  // namespace lynd

#include "sim/sweep/sweep_node.h"

namespace lynd {

namespace {

const SweepPath kWireless[] = {{"ath02", "2.4g", 11}, {"ath12", "5g", 12}, {"ath22", "6g", 14}};
const int kVlans[] = {10, 20};

void put(json_object* o, const char* key, json_object* v) { json_object_object_add(o, key, v); }
json_object* jstr(const std::string& s) { return json_object_new_string(s.c_str()); }
json_object* jtrue() { return json_object_new_boolean(1); }

json_object* bridge_conf() {
    json_object* b = json_object_new_object();
    put(b, "loop_avoidance", jtrue());
    put(b, "path_selection", jtrue());
    put(b, "hc_enable", jtrue());
    return b;
}

json_object* interface(const std::string& name, int ifindex) {
    json_object* i = json_object_new_object();
    put(i, "name", jstr(name));
    put(i, "ifindex", json_object_new_int(ifindex));
    return i;
}

// The first bridge's ports: paths, access points and, with traffic
// separation, each path's VLAN interfaces.
std::vector<std::pair<std::string, int>> lan_ports(const SweepNode& n) {
    std::vector<std::pair<std::string, int>> ports;
    for (const auto& p : n.paths)
        ports.emplace_back(p.name, p.ifindex);
    ports.emplace_back("ath0", 20);
    ports.emplace_back("ath1", 21);
    int next = 40;
    for (const auto& p : n.paths)
        for (int vid : kVlans)
            if (n.ts)
                ports.emplace_back(p.name + "." + std::to_string(vid), next++);
    return ports;
}

void ts_uci(json_object* uci) {
    const std::pair<const char*, const char*> keys[] = {
        {"wificommonCfg.settings.mesh_enable", "on"},
        {"traffic_separation.traffic_separation.enable", "on"},
        {"traffic_separation.traffic_separation.primary_vlan", "10"},
        {"traffic_separation.traffic_separation.ts_policy_count", "2"},
        {"traffic_separation.@ts_policy[0].vlan_id", "10"},
        {"traffic_separation.@ts_policy[0].ssid", "home"},
        {"traffic_separation.@ts_policy[0].is_primary", "1"},
        {"traffic_separation.@ts_policy[1].vlan_id", "20"},
        {"traffic_separation.@ts_policy[1].ssid", "guest"},
        {"wireless.ath0.ssid", "guest"},
        {"wireless.ath1.ssid", "home"}};
    for (const auto& kv : keys)
        put(uci, kv.first, jstr(kv.second));
}

}  // namespace

SweepNode sweep_draw_node(SweepRng& r) {
    SweepNode n;
    int64_t wireless = r.range(1, 3);
    int64_t first = r.range(0, 3 - wireless);
    for (int64_t i = first; i < first + wireless; i++)
        n.paths.push_back(kWireless[i]);
    n.ethernet = r.chance(30);
    if (n.ethernet)
        n.paths.push_back({"eth1", "ethernet", 3});
    n.aps = {"ath0", "ath1"};
    n.ts = r.chance(25);
    n.two_bridges = r.chance(20);
    return n;
}

json_object* sweep_node_config(const SweepNode& n) {
    json_object* c = json_object_new_object();
    put(c, "enable", jtrue());
    json_object* bridges = json_object_new_object();
    put(bridges, "br-lan", bridge_conf());
    if (n.two_bridges)
        put(bridges, "br-iot", bridge_conf());
    put(c, "bridges", bridges);
    json_object* ifs = json_object_new_object();
    for (const auto& p : n.paths) {
        json_object* i = json_object_new_object();
        put(i, "type", jstr(p.type));
        put(i, "path", jtrue());
        put(i, "nonrelay", jtrue());
        if (p.type == "ethernet")
            put(i, "compat_group", json_object_new_int(2));
        if (n.ts)
            put(i, "support_ts_vlan", jtrue());
        put(ifs, p.name.c_str(), i);
    }
    const std::pair<const char*, const char*> aps[] = {{"ath0", "2.4g"}, {"ath1", "5g"}, {"ath3", "5g"}};
    for (const auto& ap : aps) {
        if (std::string(ap.first) == "ath3" && !n.two_bridges)
            continue;
        json_object* i = json_object_new_object();
        put(i, "type", jstr(ap.second));
        if (n.ts)
            put(i, "ts_vap", jtrue());
        put(ifs, ap.first, i);
    }
    put(c, "interfaces", ifs);
    return c;
}

json_object* sweep_node_json(const SweepNode& n) {
    json_object* node = json_object_new_object();
    json_object* uci = json_object_new_object();
    put(uci, "sysmode.sysmode.mode", jstr("repeater"));
    put(uci, "meshd.meshd.role", jstr("agent"));
    if (n.ts)
        ts_uci(uci);
    if (n.ts && n.two_bridges)
        put(uci, "wireless.ath3.ssid", jstr("home"));
    put(node, "uci", uci);
    json_object* tools = json_object_new_object();
    put(tools, "iwpriv wifi0 dbdc_enable 0", jstr(""));
    put(tools, "iwpriv wifi0 dbdc_enable 1", jstr(""));
    put(node, "tools", tools);
    json_object* ifs = json_object_new_array();
    json_object* br = interface("br-lan", 2);
    put(br, "mac", jstr("02:00:00:00:00:02"));
    json_object_array_add(ifs, br);
    json_object* lan = json_object_new_array();
    for (const auto& p : lan_ports(n)) {
        json_object_array_add(ifs, interface(p.first, p.second));
        json_object_array_add(lan, jstr(p.first));
    }
    json_object* bridges = json_object_new_array();
    json_object* b = json_object_new_object();
    put(b, "name", jstr("br-lan"));
    put(b, "ports", lan);
    json_object_array_add(bridges, b);
    if (n.two_bridges) {
        json_object* iot = interface("br-iot", 5);
        put(iot, "mac", jstr("02:00:00:00:00:05"));
        json_object_array_add(ifs, iot);
        json_object_array_add(ifs, interface("ath3", 23));
        json_object* b2 = json_object_new_object();
        put(b2, "name", jstr("br-iot"));
        json_object* ports = json_object_new_array();
        json_object_array_add(ports, jstr("ath3"));
        put(b2, "ports", ports);
        json_object_array_add(bridges, b2);
    }
    put(node, "interfaces", ifs);
    put(node, "bridges", bridges);
    return node;
}

}  // namespace lynd

#include "sim/sweep/sweep_generate.h"

#include "sim/scenario/json_reader.h"

#include <cstdio>
#include <string>
#include <vector>

#include "sim/sweep/sweep_node.h"
#include "sim/sweep/sweep_rng.h"

namespace lynd {

namespace {

json_object* jint(int64_t v) { return json_object_new_int64(v); }
json_object* jstr(const std::string& s) { return json_object_new_string(s.c_str()); }

void put(json_object* o, const char* key, json_object* v) { json_object_object_add(o, key, v); }

// The path-selection parameters, each within its range.
json_object* draw_param(SweepRng& r, bool guard) {
    json_object* p = json_object_new_object();
    int64_t period = r.range(5, 20);
    put(p, "period", jint(period));
    put(p, "short_period", jint(r.range(1, period / 2)));
    put(p, "wlan_enable", json_object_new_boolean(1));
    for (const char* band : {"2g", "5g", "6g"}) {
        put(p, (std::string("linkquality_smoothing_factor_") + band).c_str(), jint(r.range(1, 18)));
        put(p, (std::string("reserved_ratio_") + band).c_str(), jint(r.range(0, 30)));
    }
    put(p, "high_threshold", jint(r.range(40, 100)));
    put(p, "delta_threshold", jint(r.range(0, 50)));
    put(p, "busy_count_threshold", jint(r.range(1, 5)));
    put(p, "handle_count", jint(r.range(1, 4)));
    put(p, "adjusted_ratio", jint(r.range(10, 100)));
    put(p, "cpu_threshold", jint(r.chance(50) ? 0 : r.range(50, 95)));
    if (guard) {
        json_object* g = json_object_new_object();
        put(g, "min_dwell", jint(r.chance(50) ? 0 : r.range(10, 300)));
        if (r.chance(60)) {
            put(g, "return_window", jint(r.range(60, 600)));
            put(g, "return_hold", jint(r.range(60, 1800)));
        }
        put(g, "moves_per_hour", jint(r.range(1, 12)));
        put(g, "preferred_return", jint(r.chance(50) ? 0 : r.range(30, 600)));
        put(p, "flap_guard", g);
    }
    return p;
}

json_object* draw_link(SweepRng& r, const SweepPath& p) {
    json_object* l = json_object_new_object();
    int64_t top = p.type == "2.4g" ? 300 : 1200;
    put(l, "txrate", jint(r.range(20, top)));
    put(l, "rxrate", jint(r.range(20, top)));
    put(l, "rssi", jint(r.range(-88, -40)));
    put(l, "util", jint(r.range(0, 90)));
    put(l, "tx_mbps", jint(r.range(0, 5)));
    return l;
}

json_object* event_at(int64_t at) {
    json_object* e = json_object_new_object();
    put(e, "at", jint(at));
    return e;
}

json_object* link_set(int64_t at, const std::string& link, json_object* set) {
    json_object* e = event_at(at);
    put(e, "link", jstr(link));
    put(e, "set", set);
    return e;
}

// A random walk of rate, signal and load, with drops, stalls and a peer
// that vanishes without an event.
void draw_link_walk(SweepRng& r, const SweepPath& p, int64_t duration, json_object* timeline) {
    int64_t rssi = -60, rate = p.type == "2.4g" ? 150 : 600, util = 30;
    int64_t step = r.range(20, 120);
    for (int64_t t = r.range(5, step); t < duration; t += r.range(step / 2, step * 3 / 2)) {
        int64_t what = r.range(0, 99);
        if (what < 6) {  // a drop and its return
            int64_t back = t + r.range(5, 300);
            json_object* down = json_object_new_object();
            put(down, "up", json_object_new_boolean(0));
            json_object_array_add(timeline, link_set(t, p.name, down));
            json_object* up = json_object_new_object();
            put(up, "up", json_object_new_boolean(1));
            json_object_array_add(timeline, link_set(back, p.name, up));
            continue;
        }
        if (what < 10) {  // the peer stops answering but stays listed
            json_object* s = json_object_new_object();
            put(s, "stalled", json_object_new_boolean(1));
            json_object_array_add(timeline, link_set(t, p.name, s));
            json_object* s2 = json_object_new_object();
            put(s2, "stalled", json_object_new_boolean(0));
            json_object_array_add(timeline, link_set(t + r.range(10, 400), p.name, s2));
            continue;
        }
        rssi = std::max<int64_t>(-95, std::min<int64_t>(-30, rssi + r.range(-8, 8)));
        rate = std::max<int64_t>(1, std::min<int64_t>(1733, rate + r.range(-150, 150)));
        util = std::max<int64_t>(0, std::min<int64_t>(100, util + r.range(-15, 15)));
        json_object* set = json_object_new_object();
        put(set, "rssi", jint(rssi));
        put(set, "txrate", jint(rate));
        put(set, "rxrate", jint(rate * r.range(70, 100) / 100));
        put(set, "util", jint(util));
        json_object_array_add(timeline, link_set(t, p.name, set));
    }
}

std::string client_mac(int i) {
    char mac[18];
    std::snprintf(mac, sizeof mac, "02:00:00:00:0a:%02x", i + 1);
    return mac;
}

json_object* client_record(SweepRng& r, const SweepNode& node, int i) {
    json_object* c = json_object_new_object();
    put(c, "mac", jstr(client_mac(i)));
    put(c, "port", jstr(node.aps[static_cast<size_t>(r.range(0, static_cast<int64_t>(node.aps.size()) - 1))]));
    put(c, "mbps", jint(r.range(1, 60)));
    return c;
}

// Clients that join, leave and come back with another load.
void draw_clients(SweepRng& r, const SweepNode& node, int64_t duration, json_object* doc, json_object* timeline) {
    json_object* clients = json_object_new_array();
    int n = static_cast<int>(r.range(0, 12));
    for (int i = 0; i < n; i++) {
        json_object* c = client_record(r, node, i);
        int64_t join = r.range(1, duration / 2);
        put(c, "join", jint(join));
        if (r.chance(40))
            put(c, "leave", jint(r.range(join + 10, duration)));
        json_object_array_add(clients, c);
    }
    put(doc, "clients", clients);
    int later = static_cast<int>(r.range(0, 6));
    for (int i = 0; i < later; i++) {
        int64_t at = r.range(10, duration - 10);
        json_object* e = event_at(at);
        put(e, "client_join", client_record(r, node, n + i));
        json_object_array_add(timeline, e);
        if (r.chance(60)) {
            json_object* l = event_at(r.range(at + 5, duration));
            put(l, "client_leave", jstr(client_mac(n + i)));
            json_object_array_add(timeline, l);
        }
    }
}

json_object* ubus_event(int64_t at, const char* name, json_object* data) {
    json_object* e = event_at(at);
    put(e, "ubus", json_object_new_string(name));
    put(e, "data", data);
    return e;
}

// Bridge messages of any type, with bodies and lengths that lie.
json_object* malformed_datagram(SweepRng& r, int64_t at) {
    json_object* e = event_at(at);
    json_object* nl = json_object_new_object();
    put(nl, "type", jint(r.range(0, 20)));
    std::string hex;
    int64_t len = r.range(0, 80);
    for (int64_t i = 0; i < len; i++) {
        char b[3];
        std::snprintf(b, sizeof b, "%02x", static_cast<unsigned>(r.range(0, 255)));
        hex += b;
    }
    put(nl, "body_hex", jstr(hex));
    if (r.chance(50))
        put(nl, "len", jint(r.range(0, 200)));
    put(e, "netlink", nl);
    return e;
}

// Bus outages, configure, link-state and debug events, CPU spikes and
// malformed datagrams over the run.
void draw_faults(SweepRng& r, const SweepNode& node, int64_t duration, json_object* doc, json_object* timeline) {
    int n = static_cast<int>(r.range(0, 3 + duration / 600));
    for (int i = 0; i < n; i++) {
        int64_t at = r.range(5, duration - 5);
        json_object* data = json_object_new_object();
        switch (r.range(0, 4)) {
        case 0: {
            json_object* down = event_at(at);
            put(down, "bus", json_object_new_string("down"));
            json_object_array_add(timeline, down);
            json_object* up = event_at(at + r.range(1, 60));
            put(up, "bus", json_object_new_string("up"));
            json_object_array_add(timeline, up);
            json_object_put(data);
            break;
        }
        case 1:
            json_object_array_add(timeline, ubus_event(at, "lynd.configure", data));
            break;
        case 2:
            put(data, "link_state", jint(node.ethernet && r.chance(50) ? 16 : 0));
            json_object_array_add(timeline, ubus_event(at, "lynd.link_state", data));
            break;
        case 3:
            put(data, "path", jint(0));
            put(data, "dbg_level", jint(1));
            json_object_array_add(timeline, ubus_event(at, "lynd.debug", data));
            break;
        default:
            json_object_put(data);
            json_object_array_add(timeline, malformed_datagram(r, at));
            break;
        }
    }
    json_object* cpu = json_object_new_array();
    json_object* start = event_at(0);
    put(start, "percent", jint(r.range(5, 40)));
    json_object_array_add(cpu, start);
    for (int64_t t = r.range(60, 900); t < duration; t += r.range(300, 1800)) {
        json_object* spike = event_at(t);
        put(spike, "percent", jint(r.range(85, 100)));
        json_object_array_add(cpu, spike);
        json_object* calm = event_at(t + r.range(10, 300));
        put(calm, "percent", jint(r.range(5, 40)));
        json_object_array_add(cpu, calm);
    }
    json_object_object_add(json_object_object_get(doc, "node"), "cpu", cpu);
}

// Client rules for a few of the first clients.
json_object* draw_rules(SweepRng& r, const SweepNode& node) {
    json_object* rules = json_object_new_array();
    int n = static_cast<int>(r.range(1, 3));
    for (int i = 0; i < n; i++) {
        json_object* rule = json_object_new_object();
        put(rule, "mac", jstr(client_mac(static_cast<int>(r.range(0, 5)))));
        if (r.chance(50))
            put(rule, "exclude", json_object_new_boolean(1));
        else
            put(rule, "pin", jstr(node.paths[static_cast<size_t>(r.range(0, static_cast<int64_t>(node.paths.size()) - 1))].type));
        json_object_array_add(rules, rule);
    }
    return rules;
}

void clip_array(json_object* parent, const char* key, int64_t end) {
    json_object* a = json_member(parent, key);
    if (a == nullptr)
        return;
    json_object* kept = json_object_new_array();
    for (size_t i = 0; i < json_object_array_length(a); i++) {
        json_object* e = json_object_array_get_idx(a, i);
        if (json_object_get_int64(json_member(e, "at")) <= end)
            json_object_array_add(kept, json_object_get(e));
    }
    json_object_object_add(parent, key, kept);
}

}  // namespace

// Clients joining after the end are left out, and leaving after it stay.
void clip_clients(json_object* doc, int64_t end) {
    json_object* a = json_member(doc, "clients");
    json_object* kept = json_object_new_array();
    for (size_t i = 0; a != nullptr && i < json_object_array_length(a); i++) {
        json_object* c = json_object_array_get_idx(a, i);
        if (json_object_get_int64(json_member(c, "join")) > end)
            continue;
        if (json_object_get_int64(json_member(c, "leave")) > end)
            json_object_object_del(c, "leave");
        json_object_array_add(kept, json_object_get(c));
    }
    json_object_object_add(doc, "clients", kept);
}

void sweep_clip(json_object* doc) {
    int64_t end = json_object_get_int64(json_member(doc, "duration"));
    clip_array(doc, "timeline", end);
    clip_array(json_member(doc, "node"), "cpu", end);
    clip_clients(doc, end);
}

json_object* sweep_generate(uint64_t seed, int64_t duration_s) {
    SweepRng r(seed);
    SweepNode node = sweep_draw_node(r);
    bool guard = r.chance(50);
    json_object* doc = json_object_new_object();
    put(doc, "name", jstr("sweep-" + std::to_string(seed)));
    put(doc, "description", jstr("Drawn by lynd-sim sweep from seed " + std::to_string(seed) + "."));
    put(doc, "duration", jint(duration_s));
    put(doc, "seed", jint(static_cast<int64_t>(seed % 1000000)));
    json_object* args = json_object_new_array();
    json_object_array_add(args, jstr("-l"));
    json_object_array_add(args, jstr("1"));
    put(doc, "args", args);
    json_object* config = sweep_node_config(node);
    put(config, "param", draw_param(r, guard));
    if (r.chance(30))
        put(config, "clients", draw_rules(r, node));
    put(doc, "config", config);
    put(doc, "node", sweep_node_json(node));
    json_object* links = json_object_new_object();
    for (const auto& p : node.paths)
        if (p.type != "ethernet")
            put(links, p.name.c_str(), draw_link(r, p));
    put(doc, "links", links);
    json_object* timeline = json_object_new_array();
    for (const auto& p : node.paths)
        if (p.type != "ethernet")
            draw_link_walk(r, p, duration_s, timeline);
    draw_clients(r, node, duration_s, doc, timeline);
    draw_faults(r, node, duration_s, doc, timeline);
    put(doc, "timeline", timeline);
    sweep_clip(doc);
    return doc;
}

}  // namespace lynd

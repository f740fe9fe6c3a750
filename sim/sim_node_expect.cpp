// Judging what the daemon left in the bridge, the radios, its own path
// records and the node's files.
#include <algorithm>
#include <cstring>

#include <json-c/json.h>

#include "core/mac.h"
#include "modules/path_selection/hc_records.h"
#include "sim/sim_node.h"

namespace lynd {

namespace {

std::string port_value(const SimPortState& p, const std::string& key) {
    const std::pair<const char*, int> ints[] = {{"compat_group", p.compat_group}, {"group", p.group},
                                                {"relay", p.relay},               {"ts_vlan", p.ts_vlan},
                                                {"broadcast", p.broadcast},       {"class", p.if_class},
                                                {"path", p.path},                 {"type", p.type}};
    for (const auto& kv : ints)
        if (key == kv.first)
            return std::to_string(kv.second);
    return key == "primary_name" ? p.primary_name : "(no such setting)";
}

std::string bridge_value(const SimBridgeState& b, const std::string& key, SimHost& host) {
    const std::pair<const char*, int> ints[] = {{"tcp_sp", b.tcp_sp},       {"bridge_mode", b.bridge_mode},
                                                {"follow_re", b.follow_re}, {"hc_enable", b.hc_enable},
                                                {"forwarding_mode", b.forwarding_mode}, {"stopped", b.stopped ? 1 : 0}};
    for (const auto& kv : ints)
        if (key == kv.first)
            return std::to_string(kv.second);
    if (key == "preferred") {
        char name[IFNAME_LEN] = {};
        return host.if_indextoname(b.preferred, name) ? name : "";
    }
    return "(no such setting)";
}

const hc_path* path_named(const std::string& name) {
    for (const auto& p : hc_paths)
        if (p.state != PATH_UNINITED && name == p.name)
            return &p;
    return nullptr;
}

std::string path_value(const std::string& name, bool samples) {
    const hc_path* p = path_named(name);
    if (p == nullptr)
        return samples ? "(not a path)" : "UNINITED";
    return samples ? std::to_string(p->path_history.num) : path_state_names[p->state];
}

// Every setting that differs, as "key: value" (empty when all match).
template <typename Lookup>
std::string differences(const Expectation& e, Lookup value_of) {
    std::string diff;
    for (const auto& kv : e.settings) {
        std::string actual = value_of(kv.first);
        if (actual != kv.second)
            diff += (diff.empty() ? "" : ", ") + kv.first + " is " + actual;
    }
    return diff;
}

}  // namespace

size_t SimNode::count_calls(const Expectation& e) const {
    size_t n = 0;
    for (size_t i = 0; i < bridge_.calls().size(); i++) {
        int64_t t = bridge_.call_times()[i];
        n += bridge_.calls()[i] == e.text && t >= e.from_ms && (e.to_ms < 0 || t <= e.to_ms);
    }
    return n;
}

ExpectResult SimNode::judge_file(const Expectation& e) const {
    ExpectResult r{&e, true, ""};
    // A bare name is one of the daemon's state files in /tmp.
    const std::string path = !e.text.empty() && e.text[0] == '/' ? e.text : "/tmp/" + e.text;
    bool has = host_.has_file(path);
    r.why = has ? "file holds \"" + host_.file(path) + "\"" : "no such file";
    if (e.absent) {
        r.passed = !has;
    } else if (e.json) {
        json_object* doc = has ? json_tokener_parse(host_.file(path).c_str()) : nullptr;
        r.passed = doc != nullptr;
        json_object_put(doc);
    } else if (!e.equals.empty() || e.writes < 0) {
        r.passed = has && host_.file(path) == e.equals;
    }
    if (e.writes >= 0) {
        r.passed = r.passed && host_.writes(path) == e.writes;
        r.why += ", written " + std::to_string(host_.writes(path)) + " times";
    }
    return r;
}

ExpectResult SimNode::judge_state(const Expectation& e) const {
    ExpectResult r{&e, false, ""};
    SimHost& host = const_cast<SimHost&>(host_);
    switch (e.kind) {
    case ExpectKind::BRIDGE_STATE: {
        SimBridgeState* b = bridge_.find(e.text);
        if (b == nullptr) {
            r.why = "no such bridge";
            return r;
        }
        if (!e.port.empty()) {
            const SimPortState& p = b->port_state[e.port];
            r.why = differences(e, [&](const std::string& k) { return port_value(p, k); });
        } else {
            r.why = differences(e, [&](const std::string& k) { return bridge_value(*b, k, host); });
        }
        break;
    }
    case ExpectKind::PATH_STATE:
    case ExpectKind::SAMPLES: {
        bool samples = e.kind == ExpectKind::SAMPLES;
        r.why = differences(e, [&](const std::string& k) { return path_value(k, samples); });
        break;
    }
    case ExpectKind::PREFERRED: {
        const SimBridgeState* b = bridge_.first();
        std::string actual = b != nullptr ? bridge_value(*b, "preferred", host) : "";
        r.passed = actual == e.equals;
        r.why = "preferred is \"" + actual + "\"";
        return r;
    }
    case ExpectKind::POOL: {
        int used = 0;
        for (const auto& c : hc_entrys)
            used += c.path_node.next != nullptr ? 1 : 0;
        r.passed = used == e.value;
        r.why = std::to_string(used) + " records in use";
        return r;
    }
    case ExpectKind::WDS_DELETED: {
        size_t n = 0;
        for (const auto& a : const_cast<SimWlan&>(wlan_).actions())
            n += a.compare(0, 11, "wds_delete ") == 0 && a.size() >= 17 && a.compare(a.size() - 17, 17, e.text) == 0 &&
                 (e.equals.empty() || a == "wds_delete " + e.equals + " " + e.text);
        r.passed = e.count < 0 ? n > 0 : n == static_cast<size_t>(e.count);
        r.why = "deleted " + std::to_string(n) + " times";
        return r;
    }
    default:
        break;
    }
    r.passed = r.why.empty();
    if (r.passed)
        r.why = "as expected";
    return r;
}

}  // namespace lynd

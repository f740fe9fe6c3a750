// The timeline's method calls on the daemon's bus object, and what the node
// saw steer its traffic.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <json-c/json.h>

#include "modules/loop_avoidance/bcast_port.h"
#include "sim/sim_node.h"
#include "sim/node/trace_dir.h"

namespace lynd {

namespace {

const char* const kSteeringCalls[] = {
    "bridgeSetHCTableEntries", "bridgeDelHCTableEntriesByMAC", "bridgeSetHcPreferred",
    "bridgeSetHcPreferredAndFlushHCTable", "bridgeFlushHCTable", "bridgeFlushHipTable", "bridgeSetTcpSP",
    "bridgeSetBridgeMode", "bridgeSetFollowRE", "bridgeSetHcEnable", "bridgeSetForwardingMode", "bridgeSetIFCompat",
    "bridgeSetIFGroup", "bridgeSetIFTSvlan", "bridgeSetIFBroadcast", "bridgeSetIFClass", "bridgeSetIFPath",
    "bridgeSetIFType", "bridgeDelFdbByName"};

bool steers(const std::string& call) {
    std::string name = call.substr(0, call.find(' '));
    for (const char* s : kSteeringCalls)
        if (name == s)
            return true;
    return false;
}

// Member names and array indices joined by dots; null when the path leaves
// the document.
json_object* at_path(json_object* doc, const std::string& path) {
    json_object* cur = doc;
    size_t pos = 0;
    while (cur != nullptr && pos <= path.size() && !path.empty()) {
        size_t dot = path.find('.', pos);
        std::string key = path.substr(pos, dot == std::string::npos ? std::string::npos : dot - pos);
        if (json_object_is_type(cur, json_type_array)) {
            char* end = nullptr;
            long i = std::strtol(key.c_str(), &end, 10);
            bool index = !key.empty() && *end == '\0' && i >= 0 && static_cast<size_t>(i) < json_object_array_length(cur);
            cur = index ? json_object_array_get_idx(cur, static_cast<size_t>(i)) : nullptr;
        } else if (!json_object_object_get_ex(cur, key.c_str(), &cur)) {
            cur = nullptr;
        }
        if (dot == std::string::npos)
            break;
        pos = dot + 1;
    }
    return cur;
}

}  // namespace

// A record call's file, moved below the run's trace directory: the trace
// is a real file on the PC and /tmp is shared.
std::string SimNode::trace_call_args(const TimelineEntry& e) {
    json_object* args = json_tokener_parse(e.data.c_str());
    json_object* file = nullptr;
    json_object* enable = nullptr;
    if (args == nullptr || !json_object_is_type(args, json_type_object) ||
        !json_object_object_get_ex(args, "enable", &enable) || !json_object_get_boolean(enable)) {
        json_object_put(args);
        return e.data;
    }
    std::string name = "lynd.trace";
    if (json_object_object_get_ex(args, "file", &file) && json_object_is_type(file, json_type_string)) {
        std::string given = json_object_get_string(file);
        name = given.substr(given.rfind('/') + 1);
    }
    trace_dir_ = trace_dir_.empty() ? trace_dir_make() : trace_dir_at(trace_dir_.c_str());
    // With no place on the PC the call names none, and the daemon refuses it.
    std::string path = trace_dir_.empty() ? "" : trace_dir_ + "/" + name;
    json_object_object_add(args, "file", json_object_new_string(path.c_str()));
    std::string text = json_object_to_json_string_ext(args, JSON_C_TO_STRING_PLAIN);
    json_object_put(args);
    return text;
}

void SimNode::call(const TimelineEntry& e) {
    std::string reply;
    bool record = e.name == "lynd" && e.method == "record";
    int status = bus_.call(e.name, e.method, record ? trace_call_args(e) : e.data, &reply);
    bus_calls_.push_back(BusCallRecord{loop_.now_ms(), e.name, e.method, e.data, status, reply});
}

size_t SimNode::steering_actions() const {
    size_t n = static_cast<size_t>(std::count_if(bridge_.calls().begin(), bridge_.calls().end(), steers));
    for (const auto& a : const_cast<SimWlan&>(wlan_).actions())
        n += a.compare(0, 11, "wds_delete ") == 0;
    for (const auto& cmd : host_.runs())
        n += cmd.find("reconnect") != std::string::npos;
    n += host_.frames().size();
    n += static_cast<size_t>(host_.writes(BCAST_PORT_FILE));
    return n;
}

ExpectResult SimNode::judge_reply(const Expectation& e) const {
    ExpectResult r{&e, false, ""};
    auto last = std::find_if(bus_calls_.rbegin(), bus_calls_.rend(),
                             [&](const BusCallRecord& c) { return c.method == e.text; });
    if (last == bus_calls_.rend()) {
        r.why = "no call of " + e.text;
        return r;
    }
    r.why = "status " + std::to_string(last->status);
    if (e.value >= 0 && last->status != e.value)
        return r;
    if (e.port.empty()) {
        r.passed = true;
        return r;
    }
    json_object* doc = json_tokener_parse(last->reply.c_str());
    json_object* found = at_path(doc, e.port);
    std::string actual = found != nullptr ? json_object_to_json_string_ext(found, JSON_C_TO_STRING_PLAIN) : "(none)";
    json_object_put(doc);
    r.passed = actual == e.equals;
    r.why += ", " + e.port + " is " + actual;
    return r;
}

}  // namespace lynd

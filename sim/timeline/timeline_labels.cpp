#include "sim/timeline/timeline_labels.h"

#include <json-c/json.h>

#include <cstdint>

#include "core/mac.h"
#include "core/wire.h"

namespace lynd {

namespace {

constexpr int kMaxFields = 3;

// The first few members of a JSON object as "key value", "up"/"down" for
// the link flag; what is no object gives nothing.
std::string fields(const std::string& json) {
    json_object* o = json_tokener_parse(json.c_str());
    if (o == nullptr)
        return "";
    std::string out;
    if (json_object_is_type(o, json_type_object)) {
        int n = 0;
        json_object_object_foreach(o, key, val) {
            if (n++ == kMaxFields) {
                out += " …";
                break;
            }
            std::string k = key;
            if (k == "up" && json_object_is_type(val, json_type_boolean)) {
                out += json_object_get_boolean(val) ? " up" : " down";
                continue;
            }
            bool scalar = !json_object_is_type(val, json_type_object) && !json_object_is_type(val, json_type_array);
            out += " " + k + (scalar ? std::string(" ") + json_object_get_string(val) : std::string(" …"));
        }
    }
    json_object_put(o);
    return out;
}

// Each MAC among the words shortened.
std::string short_macs(const std::string& words) {
    std::string out;
    for (size_t from = 0;;) {
        size_t space = words.find(' ', from);
        out += short_mac(words.substr(from, space == std::string::npos ? space : space - from));
        if (space == std::string::npos)
            return out;
        out += ' ';
        from = space + 1;
    }
}

std::string station_label(const TimelineEntry& e) {
    std::string s = "station expired " + e.name;
    if (e.data.size() == 6) {
        char mac[LYND_MAC_TEXT_LEN];
        lynd_mac_text(reinterpret_cast<const uint8_t*>(e.data.data()), mac);
        s += std::string(" ") + mac;
    }
    return s;
}

std::string netlink_label(const TimelineEntry& e) {
    if (!e.label.empty())
        return short_macs(e.label);
    const std::string& datagram = e.data;
    if (datagram.size() < 6)
        return "netlink (short)";
    uint16_t type = load_u16(reinterpret_cast<const uint8_t*>(datagram.data()) + 4);
    return "netlink type " + std::to_string(type);
}

}  // namespace

std::string event_label(const TimelineEntry& e) {
    switch (e.kind) {
    case TimelineKind::UBUS:
        return "ubus " + e.name;
    case TimelineKind::NETLINK:
    case TimelineKind::KERNEL_LINK:
        return netlink_label(e);
    case TimelineKind::STATION_EXPIRED:
        return short_macs(station_label(e));
    case TimelineKind::LINK:
        return "link " + e.name + fields(e.data);
    case TimelineKind::UCI:
        return "uci" + fields(e.data);
    case TimelineKind::BUS:
        return "bus " + e.name;
    case TimelineKind::CLIENT:
        return "client joins or leaves";
    case TimelineKind::UBUS_CALL:
        return "ubus call " + e.name + " " + e.method;
    case TimelineKind::FILE:
        return "file " + e.name;
    case TimelineKind::SQUAT:
        return "squat " + e.name;
    }
    return "";
}

std::string event_detail(const TimelineEntry& e) {
    switch (e.kind) {
    case TimelineKind::NETLINK:
    case TimelineKind::KERNEL_LINK:
        return e.detail.empty() ? event_label(e) : e.detail;
    case TimelineKind::STATION_EXPIRED:
        return station_label(e);
    default:
        return event_label(e) + (e.data.empty() ? "" : " " + e.data);
    }
}

std::string short_mac(const std::string& mac) {
    bool is_mac = mac.size() == 17;
    for (size_t i = 2; is_mac && i < mac.size(); i += 3)
        is_mac = mac[i] == ':';
    return is_mac ? mac.substr(0, 2) + ":.." + mac.substr(11) : mac;
}

}  // namespace lynd

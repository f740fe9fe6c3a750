#include "sim/node/netlink_craft.h"

#include <cctype>
#include <cstdio>
#include <cstring>

#include "core/mac.h"
#include "core/wire.h"

namespace lynd {

namespace {

constexpr size_t kMaxDatagram = 16384;

bool from_hex(const char* hex, std::string* out) {
    out->clear();
    size_t n = std::strlen(hex);
    if (n % 2 != 0 || n / 2 > kMaxDatagram)
        return false;
    for (size_t i = 0; i < n; i += 2) {
        unsigned v;
        if (std::sscanf(hex + i, "%2x", &v) != 1 || !std::isxdigit(static_cast<unsigned char>(hex[i])) ||
            !std::isxdigit(static_cast<unsigned char>(hex[i + 1])))
            return false;
        out->push_back(static_cast<char>(v));
    }
    return true;
}

void put(std::string* s, const void* p, size_t n) { s->append(static_cast<const char*>(p), n); }

std::string nlmsg(uint32_t len, uint16_t type, const std::string& body) {
    std::string m;
    uint16_t flags = 0;
    uint32_t seq = 0, pid = 0;
    put(&m, &len, 4);
    put(&m, &type, 2);
    put(&m, &flags, 2);
    put(&m, &seq, 4);
    put(&m, &pid, 4);
    return m + body;
}

const char* hex_member(json_object* entry, const char* key) {
    json_object* v = nullptr;
    if (!json_object_object_get_ex(entry, key, &v))
        return nullptr;
    return json_object_is_type(v, json_type_string) ? json_object_get_string(v) : "?";
}

}  // namespace

bool craft_bridge_datagram(json_object* entry, std::string* out, std::string* problem) {
    if (const char* raw = hex_member(entry, "raw_hex")) {
        if (!from_hex(raw, out))
            *problem = "\"raw_hex\" must be an even number of hex digits";
        return problem->empty();
    }
    json_object* type = nullptr;
    if (!json_object_object_get_ex(entry, "type", &type) || !json_object_is_type(type, json_type_int) ||
        json_object_get_int64(type) < 0 || json_object_get_int64(type) > 0xffff) {
        *problem = "\"type\" must be a message type from 0 to 65535";
        return false;
    }
    std::string body;
    if (const char* hex = hex_member(entry, "body_hex"); hex != nullptr && !from_hex(hex, &body)) {
        *problem = "\"body_hex\" must be an even number of hex digits";
        return false;
    }
    uint32_t len = static_cast<uint32_t>(16 + body.size());
    json_object* lie = nullptr;
    if (json_object_object_get_ex(entry, "len", &lie))
        len = static_cast<uint32_t>(json_object_get_int64(lie));
    *out = nlmsg(len, static_cast<uint16_t>(json_object_get_int(type)), body);
    return true;
}

std::string craft_bridge_message(uint32_t type, const void* body, size_t len) {
    return nlmsg(static_cast<uint32_t>(16 + len), static_cast<uint16_t>(type),
                 std::string(static_cast<const char*>(body), len));
}

std::string craft_station_expired(uint32_t ifindex) {
    constexpr uint16_t kRtmNewlink = 16, kIflaWireless = 11, kIwevExpired = 0x8C04;
    std::string ifi(16, '\0');
    std::memcpy(&ifi[4], &ifindex, 4);
    std::string event(20, '\0');  // length, command, then the station's address
    uint16_t ev_len = 20, cmd = kIwevExpired;
    std::memcpy(&event[0], &ev_len, 2);
    std::memcpy(&event[2], &cmd, 2);
    std::string attr(4, '\0');
    uint16_t rta_len = static_cast<uint16_t>(4 + event.size()), rta_type = kIflaWireless;
    std::memcpy(&attr[0], &rta_len, 2);
    std::memcpy(&attr[2], &rta_type, 2);
    std::string body = ifi + attr + event;
    return nlmsg(static_cast<uint32_t>(16 + body.size()), kRtmNewlink, body);
}

bool announced_hc_entry(const std::string& datagram, hc_entry* out) {
    constexpr size_t kHeader = 16;
    constexpr uint16_t kHcAdd = 3;
    const auto* d = reinterpret_cast<const uint8_t*>(datagram.data());
    if (datagram.size() < kHeader + sizeof(hc_entry))
        return false;
    uint32_t len = load_u32(d);
    if (load_u16(d + 4) != kHcAdd || len < kHeader + sizeof(hc_entry) || len > datagram.size())
        return false;
    std::memcpy(out, d + kHeader, sizeof *out);
    return !lynd_mac_is_zero(out->mac);
}

}  // namespace lynd

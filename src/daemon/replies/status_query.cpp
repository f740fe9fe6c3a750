#include <cstring>

#include "daemon/replies/status_replies.h"

using lynd::BusAttr;
using lynd::BusMessage;
using lynd::BusType;

namespace {

// Exactly "xx:xx:xx:xx:xx:xx" (or with '-'), one separator throughout.
bool mac_from_text(const char* text, uint8_t* mac) {
    if (text == nullptr || strnlen(text, LYND_MAC_TEXT_LEN) != LYND_MAC_TEXT_LEN - 1)
        return false;
    char sep = text[2];
    if (sep != ':' && sep != '-')
        return false;
    for (int i = 0; i < LYND_MAC_LEN; i++) {
        int hi = lynd_hex_digit(text[i * 3]);
        int lo = lynd_hex_digit(text[i * 3 + 1]);
        if (hi < 0 || lo < 0 || (i < LYND_MAC_LEN - 1 && text[i * 3 + 2] != sep))
            return false;
        mac[i] = static_cast<uint8_t>(hi * 16 + lo);
    }
    return true;
}

}  // namespace

int explain_query_parse(const BusMessage& args, explain_query* out) {
    *out = explain_query{};
    BusAttr mac{}, path{};
    bool has_mac = lynd::bus_find(args, "mac", &mac);
    bool has_path = lynd::bus_find(args, "path", &path);
    if (has_mac == has_path)
        return lynd::BUS_STATUS_INVALID_ARGUMENT;
    if (has_mac) {
        out->by_mac = true;
        bool ok = mac.type == BusType::STRING && mac_from_text(mac.str, out->mac);
        return ok ? lynd::BUS_STATUS_OK : lynd::BUS_STATUS_INVALID_ARGUMENT;
    }
    size_t len = path.type == BusType::STRING && path.str != nullptr ? strnlen(path.str, LYND_NAME_LEN) : 0;
    if (len == 0 || len >= LYND_NAME_LEN)
        return lynd::BUS_STATUS_INVALID_ARGUMENT;
    std::memcpy(out->path, path.str, len);
    return lynd::BUS_STATUS_OK;
}

int shadow_query_parse(const BusMessage& args, bool* enable) {
    BusAttr a{};
    if (!lynd::bus_find(args, "enable", &a) || a.type != lynd::BUS_TYPE_BOOL)
        return lynd::BUS_STATUS_INVALID_ARGUMENT;
    *enable = a.i != 0;
    return lynd::BUS_STATUS_OK;
}

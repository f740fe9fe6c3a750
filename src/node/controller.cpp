#include "node/controller.h"

#include <cstring>

#include "core/log.h"
#include "core/mac.h"
#include "core/queries.h"
#include "node/mesh_reply.h"

uint8_t g_cap_mac[LYND_MAC_LEN] = {};

void lynd_cap_mac_reset() { std::memset(g_cap_mac, 0, sizeof g_cap_mac); }

namespace {

// The command as the mesh daemon's users know it; the tool runs from argv.
constexpr const char* kFindControllerText = "ubus call map meshd '{\"action\":\"findcontroller\"}'";
constexpr const char* kLevelPath = "tessel.tessel.level";

}  // namespace

int lynd_get_cap_mac(uint8_t* mac_out) {
    const uint8_t* c = g_cap_mac;
    LYND_DEBUG("g_cap_mac: %s", lynd_mac(c).s);
    if (mac_out == nullptr)
        return 0;
    if (!lynd_mac_is_zero(g_cap_mac)) {
        std::memcpy(mac_out, g_cap_mac, LYND_MAC_LEN);
        return 1;
    }
    static const char* const argv[] = {"ubus", "-t", LYND_MESH_CALL_TIMEOUT, "call", "map", "meshd", "{\"action\":\"findcontroller\"}", nullptr};
    LYND_DEBUG("call: %s", kFindControllerText);
    char reply[LYND_MESH_REPLY_MAX] = {};
    int32_t n = lynd_exec_and_res(argv, reply, sizeof reply);
    if (n < 0) {
        LYND_DEBUG("call: %s fail", kFindControllerText);
        return 0;
    }
    LYND_DEBUG("res: %.*s", static_cast<int>(n), reply);
    uint8_t mac[LYND_MAC_LEN] = {};
    if (!lynd_parse_findcontroller_reply(reply, static_cast<size_t>(n), mac))
        return 0;
    std::memcpy(mac_out, mac, LYND_MAC_LEN);
    std::memcpy(g_cap_mac, mac, LYND_MAC_LEN);
    LYND_DEBUG("set g_cap_mac: %s", lynd_mac(c).s);
    return 1;
}

int lynd_check_direct_connect_cap() {
    LYND_DEBUG("call: uci get %s", kLevelPath);
    char level[2] = {};
    if (!lynd_uci_get_value(kLevelPath, level, sizeof level)) {
        LYND_DEBUG("call: uci get %s fail", kLevelPath);
        return 0;
    }
    LYND_DEBUG("res: %s", level);
    return level[0] == '1' ? 1 : 0;
}

int lynd_get_parent_mac(uint8_t* mac_out) {
    if (mac_out == nullptr || !lynd_check_direct_connect_cap())
        return 0;
    uint8_t mac[LYND_MAC_LEN] = {};
    if (!lynd_get_cap_mac(mac) || lynd_mac_is_zero(mac))
        return 0;
    std::memcpy(mac_out, mac, LYND_MAC_LEN);
    return 1;
}

#include "bridge/port_inventory.h"

#include <cstring>

#include "config/config.h"
#include "core/counters.h"
#include "core/log.h"
#include "core/wire.h"
#include "platform/seams.h"

namespace {

// Printed for the listing it ends.
constexpr const char* kFn = "lynd_get_active_ports";

void trace_ports(int count, conf_interface* const* ports) {
    LYND_TRACE_AS(kFn, "active ports count:%d", count);
    if (!lynd_log_on(LYND_LVL_TRACE))
        return;
    for (int i = 0; i < count; i++) {
        const conf_interface* p = ports[i];
        LYND_TRACE_AS(kFn, "port %d: name %s type %d relay %d path %d compat %d wired_primary_name %s", i, p->name,
                      p->type, p->relay, p->path, p->compat_group, p->primary_name);
    }
}

}  // namespace

size_t lynd_read_port_entries(const uint8_t* reply, size_t reply_len, uint32_t* ifindexes, size_t max) {
    if (reply_len < KREL_MSG_HEADER)
        return 0;
    size_t room = (reply_len - KREL_MSG_HEADER) / PORT_ENTRY_SIZE;
    size_t count = load_u32(reply + KREL_PAYLOAD_LEN_OFFSET) / PORT_ENTRY_SIZE;
    if (count > room)
        count = room;
    if (count > max)
        count = max;
    for (size_t i = 0; i < count; i++)
        ifindexes[i] = load_u32(reply + KREL_MSG_HEADER + i * PORT_ENTRY_SIZE);
    return count;
}

int lynd_check_active_bridge(const char* bridge_name) {
    if (bridge_name == nullptr || bridge_name[0] == '\0')
        return 0;
    lynd::KrelApi& krel = lynd::krel();
    auto* payload = static_cast<uint8_t*>(krel.bridgeAllocTableBuf(12, bridge_name));
    if (payload == nullptr) {
        LYND_ERR("bridgeAllocTableBuf");
        g_counters.bridge_call_failures++;
        return 0;
    }
    int rc = krel.netlink_msg(0, payload - KREL_MSG_HEADER, 12, HYFI_NETLINK_PROTOCOL);
    krel.bridgeFreeTableBuf(payload);
    if (rc != 0)
        g_counters.bridge_call_failures++;
    return rc == 0 ? 1 : 0;
}

int lynd_get_active_ports(lynd_config* conf, const char* bridge_name, conf_interface** ports_out) {
    lynd::KrelApi& krel = lynd::krel();
    auto* payload = static_cast<uint8_t*>(krel.bridgeAllocTableBuf(PORT_QUERY_SIZE, bridge_name));
    if (payload == nullptr) {
        LYND_ERR("bridgeAllocTableBuf");
        g_counters.bridge_call_failures++;
        return 0;
    }
    uint8_t* reply = payload - KREL_MSG_HEADER;
    if (krel.netlink_msg(256, reply, PORT_QUERY_SIZE, HYFI_NETLINK_PROTOCOL) != 0) {
        LYND_ERR("netlink_msg");
        g_counters.bridge_call_failures++;
        krel.bridgeFreeTableBuf(payload);
        return 0;
    }
    uint32_t ifindexes[LYND_MAX_PORTS];
    size_t n = lynd_read_port_entries(reply, KREL_MSG_HEADER + PORT_QUERY_SIZE, ifindexes, LYND_MAX_PORTS);
    int count = 0;
    for (size_t i = 0; i < n; i++) {
        conf_interface* iface = config_find_interface_by_index(conf, ifindexes[i]);
        if (iface != nullptr) {
            ports_out[count++] = iface;
            continue;
        }
        char name[LYND_NAME_LEN] = {};
        (void)config_index_to_name(ifindexes[i], name);
        LYND_ERR("No such interface %u, name:%s", ifindexes[i], name);
    }
    trace_ports(count, ports_out);
    krel.bridgeFreeTableBuf(payload);
    return count;
}

int lynd_get_path_ports(lynd_config* conf, const char* bridge_name, conf_interface** ports_out) {
    conf_interface* active[LYND_MAX_PORTS];
    int n = lynd_get_active_ports(conf, bridge_name, active);
    int count = 0;
    for (int i = 0; i < n; i++)
        if (active[i]->path)
            ports_out[count++] = active[i];
    return count;
}

int lynd_check_norelay_port(uint32_t ifindex, int count, conf_interface* const* ports) {
    for (int i = 0; i < count; i++) {
        if (lynd::host().if_nametoindex(ports[i]->name) == ifindex && !ports[i]->relay)
            return 1;
    }
    return 0;
}

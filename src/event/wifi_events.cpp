#include "event/wifi_events.h"

#include <cerrno>
#include <cstring>

#include "bridge/port_inventory.h"
#include "config/config.h"
#include "core/counters.h"
#include "core/list.h"
#include "core/log.h"
#include "core/wire.h"
#include "event/event_dispatch.h"
#include "event/netlink_datagram.h"
#include "event/netlink_sender.h"
#include "platform/seams.h"

namespace {

event_hub* hub_of_wifi_fd(lynd::LoopFd* f) {
    return static_cast<event_hub*>(lynd_container_of(f, offsetof(event_hub, wifi_fd)));
}

bool wifi_fatal_closing(int fd, const char* step, int err) {
    (void)lynd::host().close_fd(fd);
    LYND_FATAL_AS("event_wifi_init", "Fatal(%s): %s", std::strerror(err), step);
    return false;
}

}  // namespace

bool event_wifi_init(event_hub* ev) {
    LYND_LOG("connect to netlink %d", 0);
    lynd::Host& host = lynd::host();
    int fd = host.nl_socket(0);
    if (fd < 0) {
        LYND_FATAL("Fatal(%s): socket", std::strerror(-fd));
        return false;
    }
    uint32_t port = 0;
    int rc = host.nl_bind(fd, RTMGRP_LINK_GROUP, &port);
    if (rc < 0)
        return wifi_fatal_closing(fd, "bind", -rc);
    ev->wifi_fd = lynd::LoopFd{};
    ev->wifi_fd.fd = fd;
    ev->wifi_fd.cb = event_wifi_nl_cb;
    if (lynd::loop().fd_add(&ev->wifi_fd, lynd::LOOP_FD_READ) != 0) {
        int err = errno;
        ev->wifi_fd = lynd::LoopFd{};
        return wifi_fatal_closing(fd, "uloop_fd_add", err);
    }
    LYND_LOG("init done");
    return true;
}

void event_wifi_free(event_hub* ev) {
    lynd::LoopFd* f = &ev->wifi_fd;
    if (f->registered)
        (void)lynd::loop().fd_delete(f);
    if (f->fd >= 0)
        (void)lynd::host().close_fd(f->fd);
    *f = lynd::LoopFd{};
}

void event_wifi_nl_cb(lynd::LoopFd* f, unsigned) {
    lynd_config* conf = event_hub_config(hub_of_wifi_fd(f));
    uint8_t buf[NL_RECV_BUF_SIZE];
    for (;;) {
        std::memset(buf, 0, sizeof buf);
        uint32_t sender = 0;
        long n = lynd::host().nl_recv(f->fd, buf, sizeof buf, &sender);
        if (n <= 0)
            return;
        size_t len = static_cast<size_t>(n);
        if (!event_nl_from_kernel(sender, 0))
            continue;
        if (!nl_first_msg_ok(buf, len))
            g_counters.malformed_datagrams++;
        else if (nl_first_msg_type(buf, len) == NL_RTM_NEWLINK)
            nl_wifi_newlink_handle(conf, buf, nl_first_msg_len(buf, len));
    }
}

void nl_wifi_newlink_handle(lynd_config* conf, const uint8_t* msg, size_t len) {
    uint32_t ifindex = len >= IFINFOMSG_INDEX_OFFSET + 4 ? load_u32(msg + IFINFOMSG_INDEX_OFFSET) : 0;
    char name[LYND_NAME_LEN] = {};
    if (!config_index_to_name(ifindex, name)) {
        LYND_ERR("config_index_to_name fail");
        return;
    }
    const conf_interface* iface = config_find_interface_by_name(conf, name);
    if (iface == nullptr || !iface->path || !iface->relay)
        return;
    if (len > IFLA_ATTRS_OFFSET && nl_wifi_parse_attrs(msg + IFLA_ATTRS_OFFSET, len - IFLA_ATTRS_OFFSET)) {
        LYND_DEBUG("wifi flush table");
        event_wifi_flush_fdb(conf, name);
    }
}

void event_wifi_flush_fdb(lynd_config* conf, const char* ifname) {
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        const char* bridge = conf->bridges[i].name;
        if (!lynd_check_active_bridge(bridge))
            continue;
        conf_interface* ports[LYND_MAX_PORTS];
        int n = lynd_get_active_ports(conf, bridge, ports);
        for (int p = 0; p < n; p++) {
            if (std::strcmp(ports[p]->name, ifname) == 0)
                (void)lynd::krel().bridgeDelFdbByName(bridge, ifname);
        }
    }
}

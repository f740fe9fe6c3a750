#include "event/bridge_events.h"

#include <cerrno>
#include <cstddef>
#include <cstring>

#include "bridge/port_inventory.h"
#include "config/lynd_config.h"
#include "core/counters.h"
#include "core/list.h"
#include "core/log.h"
#include "event/event_dispatch.h"
#include "event/netlink_datagram.h"
#include "platform/seams.h"

namespace {

// The library's event kind and the protocol it sends them on.
constexpr int KREL_EVENT_TYPE = 3;

event_hub* hub_of_hyfi_fd(lynd::LoopFd* f) {
    return static_cast<event_hub*>(lynd_container_of(f, offsetof(event_hub, hyfi_fd)));
}

}  // namespace

void event_bridge_set_event(lynd_config* conf) {
    int pid = lynd::host().pid();
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        const char* name = conf->bridges[i].name;
        if (!lynd_check_active_bridge(name))
            continue;
        if (lynd::krel().bridgeSetEventInfo(name, pid, KREL_EVENT_TYPE, HYFI_NETLINK_PROTOCOL) < 0) {
            LYND_ERR("bridgeSetEventInfo");
            g_counters.bridge_call_failures++;
        }
    }
}

void event_bridge_init(event_hub* ev) {
    LYND_LOG("connect to netlink %d", HYFI_EVENT_PROTOCOL);
    lynd::Host& host = lynd::host();
    int fd = host.nl_socket(HYFI_EVENT_PROTOCOL);
    if (fd < 0)
        LYND_FATAL("Fatal(%s): socket", std::strerror(-fd));
    int rc = host.nl_bind(fd, 0);
    if (rc < 0)
        LYND_FATAL("Fatal(%s): bind", std::strerror(-rc));
    ev->hyfi_fd = lynd::LoopFd{};
    ev->hyfi_fd.fd = fd;
    ev->hyfi_fd.cb = event_hyfi_nl_cb;
    if (lynd::loop().fd_add(&ev->hyfi_fd, lynd::LOOP_FD_READ) != 0)
        LYND_FATAL("Fatal(%s): uloop_fd_add", std::strerror(errno));
    event_bridge_set_event(event_hub_config(ev));
    LYND_LOG("init done");
}

void event_bridge_free(event_hub* ev) {
    lynd::LoopFd* f = &ev->hyfi_fd;
    if (f->registered && lynd::loop().fd_delete(f) != 0)
        LYND_ERR("uloop_fd_delete: %s", std::strerror(errno));
    if (f->fd >= 0 && lynd::host().close_fd(f->fd) != 0)
        LYND_ERR("socket close: %s", std::strerror(errno));
    *f = lynd::LoopFd{};
}

void event_hyfi_nl_cb(lynd::LoopFd* f, unsigned) {
    event_hub* ev = hub_of_hyfi_fd(f);
    uint8_t buf[NL_RECV_BUF_SIZE];
    for (;;) {
        std::memset(buf, 0, sizeof buf);
        long n = lynd::host().nl_recv(f->fd, buf, sizeof buf);
        if (n == 0 || n == -EAGAIN || n == -EWOULDBLOCK)
            return;
        if (n < 0) {
            LYND_ERR("recvfrom: %s, reinit event bridge", std::strerror(static_cast<int>(-n)));
            event_bridge_free(ev);
            event_bridge_init(ev);
            return;
        }
        bridge_event be;
        if (event_hyfi_datagram(buf, static_cast<size_t>(n), &be))
            event_run_cb(ev, EVENT_BRIDGE, &be);
        else
            g_counters.malformed_datagrams++;
    }
}

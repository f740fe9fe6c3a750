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
#include "event/netlink_sender.h"
#include "platform/seams.h"

namespace {

// The library's event kind and the protocol it sends them on.
constexpr int KREL_EVENT_TYPE = 3;

event_hub* hub_of_hyfi_fd(lynd::LoopFd* f) {
    return static_cast<event_hub*>(lynd_container_of(f, offsetof(event_hub, hyfi_fd)));
}

// Opens, binds and watches the socket: 0, or the error with the step that
// failed in *step.
int open_hyfi(event_hub* ev, const char** step) {
    lynd::Host& host = lynd::host();
    int fd = host.nl_socket(HYFI_EVENT_PROTOCOL);
    if (fd < 0) {
        *step = "socket";
        return -fd;
    }
    uint32_t port = 0;
    int rc = host.nl_bind(fd, 0, &port);
    if (rc < 0) {
        (void)host.close_fd(fd);
        *step = "bind";
        return -rc;
    }
    ev->hyfi_fd = lynd::LoopFd{};
    ev->hyfi_fd.fd = fd;
    ev->hyfi_fd.cb = event_hyfi_nl_cb;
    if (lynd::loop().fd_add(&ev->hyfi_fd, lynd::LOOP_FD_READ) != 0) {
        int err = errno != 0 ? errno : EINVAL;
        (void)host.close_fd(fd);
        ev->hyfi_fd = lynd::LoopFd{};
        *step = "uloop_fd_add";
        return err;
    }
    ev->hyfi_port = port;
    return 0;
}

}  // namespace

void event_bridge_set_event(lynd_config* conf) {
    const event_hub& ev = conf->ev;
    // Without a socket (a rebuild pending) there is nothing to send to; the
    // rebuild registers again.
    if (ev.hyfi_fd.fd < 0)
        return;
    int port = static_cast<int>(ev.hyfi_port);
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        const char* name = conf->bridges[i].name;
        if (!lynd_check_active_bridge(name))
            continue;
        if (lynd::krel().bridgeSetEventInfo(name, port, KREL_EVENT_TYPE, HYFI_NETLINK_PROTOCOL) < 0) {
            LYND_ERR("bridgeSetEventInfo");
            g_counters.bridge_call_failures++;
        }
    }
}

bool event_bridge_init(event_hub* ev) {
    LYND_LOG("connect to netlink %d", HYFI_EVENT_PROTOCOL);
    const char* step = "";
    int err = open_hyfi(ev, &step);
    if (err != 0) {
        LYND_FATAL("Fatal(%s): %s", std::strerror(err), step);
        return false;
    }
    ev->hyfi_retry.cb = event_bridge_retry;
    event_bridge_set_event(event_hub_config(ev));
    LYND_LOG("init done");
    return true;
}

void event_bridge_rebuild(event_hub* ev) {
    LYND_LOG("connect to netlink %d", HYFI_EVENT_PROTOCOL);
    const char* step = "";
    int err = open_hyfi(ev, &step);
    if (err == 0) {
        ev->hyfi_retry_ms = 0;
        event_bridge_set_event(event_hub_config(ev));
        LYND_LOG("init done");
        return;
    }
    g_counters.netlink_rebuild_failures++;
    uint32_t ms = ev->hyfi_retry_ms * 2;
    ev->hyfi_retry_ms = ms < HYFI_RETRY_FIRST_MS ? HYFI_RETRY_FIRST_MS : ms > HYFI_RETRY_MAX_MS ? HYFI_RETRY_MAX_MS : ms;
    LYND_ERR("%s: %s, netlink %d rebuilt again in %u ms", step, std::strerror(err), HYFI_EVENT_PROTOCOL,
             ev->hyfi_retry_ms);
    (void)lynd::loop().timer_set(&ev->hyfi_retry, static_cast<int>(ev->hyfi_retry_ms));
}

void event_bridge_retry(lynd::LoopTimer* t) {
    event_bridge_rebuild(static_cast<event_hub*>(lynd_container_of(t, offsetof(event_hub, hyfi_retry))));
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
        uint32_t sender = 0;
        long n = lynd::host().nl_recv(f->fd, buf, sizeof buf, &sender);
        if (n == 0 || n == -EAGAIN || n == -EWOULDBLOCK)
            return;
        if (n < 0) {
            LYND_ERR("recvfrom: %s, reinit event bridge", std::strerror(static_cast<int>(-n)));
            event_bridge_free(ev);
            event_bridge_rebuild(ev);
            return;
        }
        if (!event_nl_from_kernel(sender, HYFI_EVENT_PROTOCOL))
            continue;
        bridge_event be;
        if (event_hyfi_datagram(buf, static_cast<size_t>(n), &be))
            event_run_cb(ev, EVENT_BRIDGE, &be);
        else
            g_counters.malformed_datagrams++;
    }
}

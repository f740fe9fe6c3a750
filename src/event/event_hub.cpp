#include "event/event_hub.h"

#include <cstddef>

#include "config/lynd_config.h"
#include "core/log.h"
#include "event/bridge_events.h"
#include "event/ubus_receive.h"
#include "event/wifi_events.h"
#include "platform/seams.h"

event_hub* l_ev = nullptr;

lynd_config* event_hub_config(event_hub* ev) {
    return reinterpret_cast<lynd_config*>(reinterpret_cast<char*>(ev) - offsetof(lynd_config, ev));
}

void event_add_listener(event_hub* ev, event_listener* listener) {
    lynd_list_add(&listener->list, &ev->listeners);
}

void event_del_listener(event_listener* listener) {
    if (listener->list.next != nullptr)
        lynd_list_del(&listener->list);
}

void event_init(event_hub* ev) {
    *ev = event_hub{};
    lynd_list_init(&ev->listeners);
    lynd::loop().init();
    lynd::host().ignore_sigpipe();
    event_ubus_init(ev);
    event_bridge_init(ev);
    event_wifi_init(ev);
}

void event_run_cb(event_hub* ev, uint32_t type, void* data) {
    lynd_config* conf = event_hub_config(ev);
    lynd_list* p = ev->listeners.next;
    while (p != &ev->listeners) {
        event_listener* l = reinterpret_cast<event_listener*>(p);
        l->cb(conf, l, type, data);
        p = p->next;  // read after the call: a listener may have added others
    }
}

void event_loop(event_hub* ev) {
    event_run_cb(ev, EVENT_STARTUP, nullptr);
    lynd::loop().run();
}

namespace {

void event_fd_free(lynd::LoopFd* f) {
    if (f->registered)
        lynd::loop().fd_delete(f);
    if (f->fd >= 0 && lynd::host().close_fd(f->fd) != 0)
        LYND_ERR("close");
    f->fd = -1;
}

}  // namespace

void event_free(event_hub* ev) {
    event_ubus_free(ev);
    event_fd_free(&ev->hyfi_fd);
    event_fd_free(&ev->wifi_fd);
    lynd::loop().done();
}

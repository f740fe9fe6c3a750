#include "event/event_dispatch.h"

#include <cstddef>

#include "config/lynd_config.h"
#include "core/counters.h"

event_hub* l_ev = nullptr;

lynd_config* event_hub_config(event_hub* ev) {
    return static_cast<lynd_config*>(lynd_container_of(ev, offsetof(lynd_config, ev)));
}

void event_add_listener(event_hub* ev, event_listener* listener) {
    lynd_list_add(&listener->list, &ev->listeners);
}

void event_del_listener(event_listener* listener) {
    if (listener->list.next != nullptr)
        lynd_list_del(&listener->list);
}

void event_run_cb(event_hub* ev, uint32_t type, void* data) {
    lynd_config* conf = event_hub_config(ev);
    lynd_count_event(type);
    lynd_list* p = ev->listeners.next;
    while (p != &ev->listeners) {
        event_listener* l = static_cast<event_listener*>(lynd_container_of(p, offsetof(event_listener, list)));
        l->cb(conf, l, type, data);
        p = p->next;  // read after the call: a listener may have added others
    }
}

void lynd_run_configure_bridge() {
    if (l_ev == nullptr)
        return;
    configure_event cfg{WORK_MODE_INVALID, TRI_KEEP, TRI_KEEP, TRI_KEEP};
    event_run_cb(l_ev, EVENT_CONFIGURE, &cfg);
}

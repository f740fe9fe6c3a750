#include "bridge/port_inventory.h"
#include "event/event_hub.h"

void lynd_run_configure_bridge() {
    if (l_ev == nullptr)
        return;
    configure_event cfg{WORK_MODE_INVALID, TRI_KEEP, TRI_KEEP, TRI_KEEP};
    event_run_cb(l_ev, EVENT_CONFIGURE, &cfg);
}

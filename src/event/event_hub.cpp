#include "event/event_hub.h"

#include "core/log.h"
#include "event/bridge_events.h"
#include "event/event_dispatch.h"
#include "event/ubus_receive.h"
#include "event/wifi_events.h"
#include "platform/seams.h"

bool event_init(event_hub* ev) {
    *ev = event_hub{};
    lynd_list_init(&ev->listeners);
    lynd::loop().init();
    lynd::host().ignore_sigpipe();
    return event_ubus_init(ev) && event_bridge_init(ev) && event_wifi_init(ev);
}

void event_loop(event_hub* ev) {
    event_run_cb(ev, EVENT_STARTUP, nullptr);
    lynd::loop().run();
}

// The wireless socket stays open until the process ends.
void event_free(event_hub* ev) {
    event_ubus_free(ev);
    if (ev->hyfi_retry.pending)
        (void)lynd::loop().timer_cancel(&ev->hyfi_retry);
    lynd::LoopFd* f = &ev->hyfi_fd;
    if (f->registered)
        lynd::loop().fd_delete(f);
    if (f->fd >= 0 && lynd::host().close_fd(f->fd) != 0)
        LYND_ERR("close");
    f->fd = -1;
    lynd::loop().done();
}

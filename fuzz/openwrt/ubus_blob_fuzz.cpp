// Raw blobmsg bytes, as a peer on the bus could send them, through the
// conversion and every "lynd.*" policy.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "event/ubus_decode.h"
#include "event/ubus_policy.h"
#include "fuzz/fuzz_seams.h"
#include "targets/openwrt/ubus_message.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    // Exactly as long as the input, so a read past it is caught.
    std::vector<uint8_t> exact(data, data + size);
    lynd::BusMessage m;
    lynd::ubus_message_from_blob(exact.data(), exact.size(), &m);
    const lynd::BusAttr* tb[__DEBUG_MAX];
    lynd::BusAttr found[__DEBUG_MAX];
    if (lynd::bus_parse(debug_policy, __DEBUG_MAX, tb, found, m) == 0) {
        debug_event d;
        (void)ubus_debug_from(tb, &d);
    }
    if (lynd::bus_parse(configure_policy, __CONFIGURE_MAX, tb, found, m) == 0) {
        configure_event c;
        ubus_configure_from(tb, &c);
    }
    if (lynd::bus_parse(link_state_policy, __LINK_STATE_MAX, tb, found, m) == 0) {
        uint32_t hub[4] = {};
        link_state_event ls;
        ubus_link_state_from(tb[LINK_STATE_LINK_STATE], hub, &ls);
    }
    return 0;
}

// Raw blobmsg bytes, as a peer on the bus could send them, through the
// conversion and every "lynd.*" policy.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "event/ubus_decode.h"
#include "event/ubus_policy.h"
#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_seams.h"
#include "targets/openwrt/ubus_message.h"

namespace {

// The walk hands out as many attributes as the check counted, however many.
void check_walk(const lynd::BusMessage& m) {
    if (m.walk == nullptr)
        return;
    size_t n = 0;
    lynd::BusAttr a;
    for (size_t pos = 0; m.walk(m.raw, m.raw_len, &pos, &a);)
        n++;
    fuzz_check(n == m.count, "walked count");
}

// Each match carries its policy's name and type.
void check_matches(const lynd::bus_policy* policy, int len, const lynd::BusAttr* const* tb) {
    for (int i = 0; i < len; i++) {
        if (tb[i] == nullptr)
            continue;
        fuzz_check(tb[i]->type == policy[i].type, "match type");
        fuzz_check(std::strcmp(tb[i]->name, policy[i].name) == 0, "match name");
        fuzz_check(tb[i]->type != lynd::BusType::STRING || tb[i]->str != nullptr, "match string");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    // Exactly as long as the input, so a read past it is caught.
    std::vector<uint8_t> exact(data, data + size);
    lynd::BusMessage m;
    lynd::ubus_message_from_blob(exact.data(), exact.size(), &m);
    check_walk(m);
    const lynd::BusAttr* tb[__DEBUG_MAX];
    lynd::BusAttr found[__DEBUG_MAX];
    if (lynd::bus_parse(debug_policy, __DEBUG_MAX, tb, found, m) == 0) {
        check_matches(debug_policy, __DEBUG_MAX, tb);
        debug_event d;
        (void)ubus_debug_from(tb, &d);
    }
    if (lynd::bus_parse(configure_policy, __CONFIGURE_MAX, tb, found, m) == 0) {
        check_matches(configure_policy, __CONFIGURE_MAX, tb);
        configure_event c;
        ubus_configure_from(tb, &c);
    }
    if (lynd::bus_parse(link_state_policy, __LINK_STATE_MAX, tb, found, m) == 0) {
        check_matches(link_state_policy, __LINK_STATE_MAX, tb);
        uint32_t hub[4] = {};
        link_state_event ls;
        ubus_link_state_from(tb[LINK_STATE_LINK_STATE], hub, &ls);
    }
    return 0;
}

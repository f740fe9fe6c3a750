// Bus messages built from arbitrary JSON, through every "lynd.*" decoder.
#include <json-c/json.h>

#include <cstddef>
#include <cstdint>

#include "event/ubus_decode.h"
#include "event/ubus_policy.h"
#include "fuzz/fuzz_seams.h"
#include "sim/node/bus_json.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    json_tokener* tok = json_tokener_new();
    json_object* obj = json_tokener_parse_ex(tok, reinterpret_cast<const char*>(data), static_cast<int>(size));
    json_tokener_free(tok);
    lynd::BusJsonMessage m;
    if (lynd::bus_message_from_json(obj, &m)) {
        const lynd::BusAttr* tb[__DEBUG_MAX];
        lynd::BusAttr found[__DEBUG_MAX];
        if (lynd::bus_parse(configure_policy, __CONFIGURE_MAX, tb, found, m.msg) == 0) {
            configure_event c;
            ubus_configure_from(tb, &c);
        }
        if (lynd::bus_parse(link_state_policy, __LINK_STATE_MAX, tb, found, m.msg) == 0) {
            uint32_t hub[4] = {};
            link_state_event ls;
            ubus_link_state_from(tb[LINK_STATE_LINK_STATE], hub, &ls);
        }
        if (lynd::bus_parse(debug_policy, __DEBUG_MAX, tb, found, m.msg) == 0) {
            debug_event d;
            (void)ubus_debug_from(tb, &d);
        }
    }
    json_object_put(obj);
    return 0;
}

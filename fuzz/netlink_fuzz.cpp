// Received datagrams through the bridge-event and wireless-event readers.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "event/netlink_datagram.h"
#include "fuzz/fuzz_seams.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    // An exact-size copy, so reading one byte too far is caught.
    std::vector<uint8_t> buf(data, data + size);
    bridge_event be;
    if (event_hyfi_datagram(buf.data(), buf.size(), &be) && be.data_len > 0) {
        volatile uint8_t last = be.data[be.data_len - 1];
        (void)last;
    }
    (void)nl_wifi_parse_attrs(buf.data(), buf.size());
    (void)__isDisassociateEvent(buf.data(), buf.size());
    return 0;
}

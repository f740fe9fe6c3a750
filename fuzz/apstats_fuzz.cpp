// apstats reports of any shape through the byte-counter reader.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_seams.h"
#include "wlan/qca/apstats_parse.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    std::vector<char> text(data, data + size);
    constexpr uint64_t kUnread = 0x5a5a5a5a5a5a5a5aull;
    wlan_link_counters c{kUnread, kUnread};
    if (!wlan_read_apstats(text.data(), text.size(), &c))
        fuzz_check(c.tx_bytes == kUnread || c.rx_bytes == kUnread, "a miss leaves a counter as it was");
    return 0;
}

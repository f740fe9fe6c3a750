// apstats reports of any shape through the byte-counter reader.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/fuzz_seams.h"
#include "wlan/qca/apstats_parse.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    std::vector<char> text(data, data + size);
    wlan_link_counters c{};
    (void)wlan_read_apstats(text.data(), text.size(), &c);
    return 0;
}

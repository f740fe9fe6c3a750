// /proc/stat and /proc/net/dev text of any shape through their readers.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "node/host_stats.h"
#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_seams.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    std::vector<char> text(data, data + size);
    cpu_sample s;
    if (lynd_parse_proc_stat(text.data(), text.size(), &s))
        (void)lynd_cpu_percent(cpu_sample{}, s);
    if_stat st;
    for (const char* name : {"eth0", "ath12", "a-name-too-long-for-a-field"}) {
        st = if_stat{7, 7, 7, 7, 7};
        if (!lynd_parse_net_dev(text.data(), text.size(), name, &st))
            fuzz_check(st.rx_bytes == 7 && st.tx_packets == 7, "a name not found leaves the figures");
    }
    return 0;
}

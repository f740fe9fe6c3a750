#include "wlan/qca/apstats_parse.h"

#include <cstdlib>
#include <cstring>

#include "core/text_lines.h"

namespace {

constexpr size_t kLineMax = 512;

// The number after the line's first "= "; false when there is none.
bool value_after_equals(const char* line, uint64_t* value) {
    const char* at = std::strstr(line, "= ");
    if (at == nullptr)
        return false;
    char* end = nullptr;
    unsigned long long v = std::strtoull(at + 2, &end, 10);
    if (end == at + 2)
        return false;
    *value = v;
    return true;
}

}  // namespace

bool wlan_read_apstats(const char* text, size_t len, wlan_link_counters* counters) {
    bool tx_found = false;
    bool rx_found = false;
    char line[kLineMax];
    for (size_t pos = 0; pos < len && !(tx_found && rx_found);) {
        pos = lynd_next_line(text, len, pos, line, sizeof line);
        if (std::strstr(line, "x Data Bytes") == nullptr)
            continue;
        if (std::strstr(line, "Tx") != nullptr && value_after_equals(line, &counters->tx_bytes))
            tx_found = true;
        if (std::strstr(line, "Rx") != nullptr && value_after_equals(line, &counters->rx_bytes))
            rx_found = true;
    }
    return tx_found && rx_found;
}

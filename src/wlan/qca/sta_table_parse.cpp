#include "wlan/qca/sta_table_parse.h"

#include <cstring>

#include "core/wire.h"
#include "wlan/qca/qca_ioctl.h"

static_assert(STA_OFF_RATES + UINT8_MAX < QCA_STA_RECORD_MIN, "any rate index stays inside a record");
static_assert(STA_OFF_RXRATE + 4 <= QCA_STA_RECORD_MIN, "fixed fields inside a record");

namespace {

uint16_t tx_mbps(const uint8_t* rec) {
    uint32_t kbit = load_u32(rec + STA_OFF_TXRATE);
    if (kbit != 0)
        return static_cast<uint16_t>(kbit / 1000);
    // No measured rate: the current entry of the legacy rate set, whose
    // low 7 bits count 500 kbit/s.
    uint8_t rate = rec[STA_OFF_RATES + rec[STA_OFF_RATE_INDEX]];
    return static_cast<uint16_t>((rate & 0x7f) / 2);
}

wlan_link_info read_record(const uint8_t* rec) {
    wlan_link_info l{};
    std::memcpy(l.mac, rec + STA_OFF_MAC, sizeof l.mac);
    l.idle = load_u16(rec + STA_OFF_IDLE);
    l.txrate = tx_mbps(rec);
    l.rxrate = static_cast<uint16_t>(load_u32(rec + STA_OFF_RXRATE) / 1000);
    l.noise = load_s32(rec + STA_OFF_NOISE);
    l.snr = static_cast<int8_t>(rec[STA_OFF_SNR]);
    // The low byte of the sum; unsigned so that no sum can overflow.
    l.rssi = static_cast<int8_t>(static_cast<uint32_t>(l.snr) + static_cast<uint32_t>(l.noise));
    return l;
}

}  // namespace

size_t qca_read_sta_table(const uint8_t* reply, size_t len, wlan_link_info* links, size_t max) {
    size_t count = 0;
    size_t pos = 0;
    size_t remaining = len;
    while (remaining >= QCA_STA_RECORD_MIN && count < max) {
        const uint8_t* rec = reply + pos;
        links[count++] = read_record(rec);
        size_t rec_len = load_u16(rec + STA_OFF_LEN);
        if (rec_len == 0 || rec_len > remaining)
            break;
        pos += rec_len;
        remaining -= rec_len;
    }
    return count;
}

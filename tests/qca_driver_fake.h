// A QCA driver for tests: answers from a few fields, records every request,
// and crafts station records byte by byte at the driver's offsets.
#pragma once
#include <cstring>
#include <string>
#include <vector>

#include "sim/node/sim_driver.h"
#include "sim_fixture.h"
#include "wlan/qca/qca_ioctl.h"

struct FakePeer {
    uint8_t id;
    uint32_t tx_kbit, rx_kbit;
    int32_t noise;
    int8_t snr;
    uint16_t idle;
    uint8_t legacy_rate;  // the current entry (index 3) of the rate set
    uint16_t len = QCA_STA_RECORD_MIN;
};

inline void put(std::string& b, size_t off, const void* v, size_t n) { std::memcpy(&b[off], v, n); }

inline std::string sta_record(const FakePeer& p) {
    std::string b(QCA_STA_RECORD_MIN, '\0');
    const uint8_t mac[6] = {2, 0, 0, 0, 0, p.id}, rate_index = 3;
    put(b, STA_OFF_LEN, &p.len, 2);
    put(b, STA_OFF_NOISE, &p.noise, 4);
    put(b, STA_OFF_SNR, &p.snr, 1);
    put(b, STA_OFF_MAC, mac, 6);
    put(b, STA_OFF_RATES + rate_index, &p.legacy_rate, 1);
    put(b, STA_OFF_RATE_INDEX, &rate_index, 1);
    put(b, STA_OFF_TXRATE, &p.tx_kbit, 4);
    put(b, STA_OFF_IDLE, &p.idle, 2);
    put(b, STA_OFF_RXRATE, &p.rx_kbit, 4);
    return b;
}

class FakeQcaDriver : public lynd::SimDriver {
public:
    struct Request {
        unsigned long number;
        std::string ifname;
        uint16_t length;
        std::string data;  // what a data request carried in
    };
    std::vector<Request> requests;
    int rc = 0, ap_rc = 0, mode_rc = 0;
    std::string sta_reply;   // copied into the caller's buffer
    long sta_reported = -1;  // the length reported back; -1: what was copied
    int32_t util = 20;
    uint8_t bssid[6] = {2, 0, 0, 0, 0, 0x99};
    uint32_t mode = 2;  // managed

    int ioctl(unsigned long number, void* arg) override {
        auto* req = static_cast<iw_request*>(arg);
        requests.push_back({number, req->name, req->u.data.length, std::string()});
        if (number == IW_IOCTL_GET_AP)
            std::memcpy(req->u.addr.bytes, bssid, 6);
        if (number == IW_IOCTL_GET_MODE)
            req->u.mode = mode;
        if (number == QCA_IOCTL_GET_PARAM)
            req->u.value = req->u.value == QCA_PARAM_CHANNEL_UTIL ? util : -1;
        if (number == QCA_IOCTL_GENERIC)
            requests.back().data.assign(static_cast<const char*>(req->u.data.pointer), req->u.data.length);
        if (number == QCA_IOCTL_STA_TABLE) {
            size_t n = std::min<size_t>(sta_reply.size(), req->u.data.length);
            std::memcpy(req->u.data.pointer, sta_reply.data(), n);
            req->u.data.length = static_cast<uint16_t>(sta_reported >= 0 ? sta_reported : static_cast<long>(n));
        }
        return number == IW_IOCTL_GET_AP ? ap_rc : number == IW_IOCTL_GET_MODE ? mode_rc : rc;
    }
};

class QcaDriverTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        host.set_driver(&driver);
    }
    FakeQcaDriver driver;
};

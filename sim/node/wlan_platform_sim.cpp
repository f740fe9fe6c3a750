#include "sim/node/wlan_platform_sim.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "core/mac.h"
#include "sim/node/sim_host.h"
#include "sim/node/sim_loop.h"
#include "wlan/qca/qca_ioctl.h"

namespace lynd {

namespace {

constexpr uint32_t kModeManaged = 2;
constexpr uint32_t kModeMaster = 3;
constexpr uint64_t kBytesPerMbitSecond = 125000;
constexpr uint8_t kBasicRates[] = {0x8c, 0x12, 0x98, 0x24, 0xb0, 0x48, 0x60, 0x6c};

std::string mac_text(const uint8_t* mac) { return lynd_mac(mac).s; }

void put_u16(uint8_t* p, uint16_t v) { std::memcpy(p, &v, sizeof v); }
void put_u32(uint8_t* p, uint32_t v) { std::memcpy(p, &v, sizeof v); }

// One station record as the driver lays it out.
void put_record(uint8_t* rec, const uint8_t* mac, uint16_t tx, uint16_t rx, int8_t rssi, int32_t noise,
                uint16_t idle) {
    std::memset(rec, 0, QCA_STA_RECORD_MIN);
    put_u16(rec + STA_OFF_LEN, static_cast<uint16_t>(QCA_STA_RECORD_MIN));
    put_u32(rec + STA_OFF_NOISE, static_cast<uint32_t>(noise));
    rec[STA_OFF_SNR] = static_cast<uint8_t>(static_cast<int8_t>(rssi - noise));
    std::memcpy(rec + STA_OFF_MAC, mac, 6);
    std::memcpy(rec + STA_OFF_RATES, kBasicRates, sizeof kBasicRates);
    put_u32(rec + STA_OFF_TXRATE, static_cast<uint32_t>(tx) * 1000);
    put_u16(rec + STA_OFF_IDLE, idle);
    put_u32(rec + STA_OFF_RXRATE, static_cast<uint32_t>(rx) * 1000);
}

}  // namespace

void SimWlan::set_client_load(const std::string& ifname, uint32_t mbps) {
    auto it = links_.find(ifname);
    if (it == links_.end())
        return;
    catch_up(&it->second);
    it->second.client_mbps = mbps;
}

void SimWlan::frame_sent(const char* ifname, size_t len) {
    auto it = links_.find(ifname);
    if (it == links_.end())
        return;
    catch_up(&it->second);
    if (it->second.link.count_keepalive && !it->second.link.stalled)
        it->second.link.tx_bytes += len;
}

void SimWlan::set_link(const std::string& ifname, const SimLink& link) {
    Counted& c = links_[ifname];
    c.link = link;
    c.since_ms = loop_ != nullptr ? loop_->now_ms() : 0;
}

void SimWlan::catch_up(Counted* c) {
    int64_t now = loop_ != nullptr ? loop_->now_ms() : 0;
    uint64_t ms = c->link.stalled ? 0 : static_cast<uint64_t>(now - c->since_ms);
    c->link.tx_bytes += (c->link.tx_mbps + c->client_mbps) * kBytesPerMbitSecond * ms / 1000;
    c->link.rx_bytes += c->link.rx_mbps * kBytesPerMbitSecond * ms / 1000;
    c->since_ms = now;
}

const SimLink* SimWlan::link(const std::string& ifname) {
    auto it = links_.find(ifname);
    if (it == links_.end())
        return nullptr;
    catch_up(&it->second);
    return &it->second.link;
}

void SimWlan::set_stations(const std::string& ifname, const std::vector<SimStation>& stations) {
    stations_[ifname] = stations;
}

int SimWlan::reconnects(const std::string& ifname) const {
    auto it = links_.find(ifname);
    return it == links_.end() ? 0 : it->second.reconnects;
}

// Utilisation is the channel's: every interface of a radio ("ath1x" on
// radio 1) reports what the scenario gave a link of that radio.
uint8_t SimWlan::radio_util(const char* ifname) const {
    for (const auto& kv : links_) {
        if (kv.first.size() > 3 && std::strlen(ifname) > 3 && kv.first[3] == ifname[3]) {
            const Counted& c = kv.second;
            uint32_t share = c.link.txrate != 0 ? c.client_mbps * 100u / c.link.txrate : 0;
            return static_cast<uint8_t>(std::min<uint32_t>(100u, c.link.util + share));
        }
    }
    return 0;
}

int SimWlan::station_table(const char* ifname, void* reply, uint16_t* length) {
    auto* out = static_cast<uint8_t*>(reply);
    size_t room = *length, used = 0;
    auto l = links_.find(ifname);
    auto s = stations_.find(ifname);
    if (l == links_.end() && s == stations_.end())
        return -ENODEV;
    if (l != links_.end() && l->second.link.up && room >= QCA_STA_RECORD_MIN) {
        const SimLink& k = l->second.link;
        put_record(out, k.peer, k.txrate, k.rxrate, k.rssi, k.noise, k.idle);
        used += QCA_STA_RECORD_MIN;
    }
    if (s != stations_.end()) {
        for (const SimStation& st : s->second) {
            if (room - used < QCA_STA_RECORD_MIN)
                break;
            put_record(out + used, st.mac, st.txrate, st.rxrate, st.rssi, st.noise, st.idle);
            used += QCA_STA_RECORD_MIN;
        }
    }
    *length = static_cast<uint16_t>(used);
    return 0;
}

int SimWlan::access_point(const char* ifname, uint8_t* bssid) {
    auto l = links_.find(ifname);
    if (l != links_.end()) {
        static const uint8_t zero[6] = {};
        std::memcpy(bssid, l->second.link.up ? l->second.link.peer : zero, 6);
        return 0;
    }
    if (stations_.count(ifname) == 0)
        return -ENODEV;
    // An access point reports its own address.
    const SimInterface* i = host_ != nullptr ? host_->find_interface(ifname) : nullptr;
    static const uint8_t fallback[6] = {0x02, 0x5a, 0, 0, 0, 0x01};
    std::memcpy(bssid, i != nullptr ? i->mac : fallback, 6);
    if (lynd_mac_is_zero(bssid))
        std::memcpy(bssid, fallback, 6);
    return 0;
}

int SimWlan::mode(const char* ifname, uint32_t* mode) const {
    if (links_.count(ifname) != 0)
        *mode = kModeManaged;
    else if (stations_.count(ifname) != 0)
        *mode = kModeMaster;
    else
        return -ENODEV;
    return 0;
}

int SimWlan::ioctl(unsigned long request, void* arg) {
    auto* req = static_cast<iw_request*>(arg);
    char ifname[sizeof req->name + 1] = {};
    std::memcpy(ifname, req->name, sizeof req->name);
    switch (request) {
    case QCA_IOCTL_STA_TABLE:
        return station_table(ifname, req->u.data.pointer, &req->u.data.length);
    case QCA_IOCTL_GET_PARAM:
        if (req->u.value != QCA_PARAM_CHANNEL_UTIL)
            return -EINVAL;
        if (links_.count(ifname) == 0 && stations_.count(ifname) == 0)
            return -ENODEV;
        req->u.value = radio_util(ifname);
        return 0;
    case QCA_IOCTL_GENERIC: {
        const auto* block = static_cast<const uint8_t*>(req->u.data.pointer);
        uint32_t cmd = 0;
        if (block == nullptr || req->u.data.length < QCA_WDS_CMD_SIZE)
            return -EINVAL;
        std::memcpy(&cmd, block, sizeof cmd);
        if (cmd != QCA_CMD_WDS_DELETE)
            return -EINVAL;
        actions_.push_back(std::string("wds_delete ") + ifname + " " + mac_text(block + QCA_WDS_CMD_MAC_OFFSET));
        return 0;
    }
    case IW_IOCTL_GET_AP:
        return access_point(ifname, req->u.addr.bytes);
    case IW_IOCTL_GET_MODE:
        return mode(ifname, &req->u.mode);
    default:
        return -EOPNOTSUPP;
    }
}

bool SimWlan::counters(const std::string& ifname, uint64_t* tx, uint64_t* rx) {
    const SimLink* l = link(ifname);
    if (l == nullptr)
        return false;
    *tx = l->tx_bytes;
    *rx = l->rx_bytes;
    return true;
}

bool SimWlan::tool(const std::string& cmdline, std::string* output, int* status) {
    for (auto& kv : links_) {
        const std::string& n = kv.first;
        if (cmdline == "apstats -v -i " + n) {
            uint64_t tx = 0, rx = 0;
            (void)counters(n, &tx, &rx);
            char text[512];
            std::snprintf(text, sizeof text,
                          "VAP Level Stats: %s (is up)\nTx Data Packets                 = %" PRIu64
                          "\nTx Data Bytes                   = %" PRIu64 "\nRx Data Packets                 = %" PRIu64
                          "\nRx Data Bytes                   = %" PRIu64 "\n",
                          n.c_str(), tx / 1500, tx, rx / 1500, rx);
            *output = text;
            *status = 0;
            return true;
        }
        if (cmdline == "wpa_cli -p /var/run/wpa_supplicant-" + n + " -i " + n + " reconnect") {
            kv.second.reconnects++;
            *output = "OK\n";
            *status = 0;
            return true;
        }
    }
    return false;
}

long SimWlan::file(const char* path, char* buf, size_t size) {
    if (std::strcmp(path, "/proc/net/dev") != 0 || host_ == nullptr || size == 0)
        return -1;
    size_t used = 0;
    auto put = [&](int n) { used += n < 0 ? 0 : static_cast<size_t>(n); used = used < size ? used : size - 1; };
    put(std::snprintf(buf, size,
                      "Inter-|   Receive                                                |  Transmit\n"
                      " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs "
                      "drop fifo colls carrier compressed\n"));
    for (const SimInterface& i : host_->interfaces()) {
        uint64_t tx = 0, rx = 0;
        (void)counters(i.name, &tx, &rx);
        put(std::snprintf(buf + used, size - used,
                          "%6s: %" PRIu64 " %" PRIu64 " 0 0 0 0 0 0 %" PRIu64 " %" PRIu64 " 0 0 0 0 0 0\n",
                          i.name.c_str(), rx, rx / 1500, tx, tx / 1500));
    }
    return static_cast<long>(used);
}

}  // namespace lynd

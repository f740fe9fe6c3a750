// The simulated radios behind the QCA back-end: backhaul links, the
// stations of the node's access points, channel utilisation and byte
// counters, all from the scenario. They answer the driver's requests, the
// vendor tools that read them, and /proc/net/dev.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "sim/node/sim_driver.h"

namespace lynd {

class SimHost;
class SimLoop;

// A backhaul station interface and the access point it is associated with.
struct SimLink {
    bool up = true;
    uint8_t peer[6] = {0x02, 0, 0, 0, 0, 0x01};
    uint16_t txrate = 0;  // Mbps
    uint16_t rxrate = 0;
    int8_t rssi = -60;  // dBm
    int32_t noise = -95;
    uint16_t idle = 0;
    uint8_t util = 0;  // percent of the radio's channel
    uint64_t tx_bytes = 0;
    uint64_t rx_bytes = 0;
    uint32_t tx_mbps = 0;  // load that grows the counters with time
    uint32_t rx_mbps = 0;
    bool count_keepalive = true;  // keep-alive frames add to tx_bytes
    bool stalled = false;         // the peer is gone but still listed: counters stand still
};

// A station associated with one of the node's access points.
struct SimStation {
    uint8_t mac[6] = {};
    uint16_t txrate = 0;
    uint16_t rxrate = 0;
    int8_t rssi = -50;
    int32_t noise = -95;
    uint16_t idle = 0;
};

class SimWlan : public SimDriver {
public:
    // host: interface indexes and addresses; loop: the time counters grow by.
    SimWlan(SimHost* host, SimLoop* loop) : host_(host), loop_(loop) {}

    // Replaces a link; its counters grow from now on.
    void set_link(const std::string& ifname, const SimLink& link);
    // The link as it stands now (counters brought up to date), or null.
    const SimLink* link(const std::string& ifname);
    // The clients' traffic on a link, on top of its own load: it grows the
    // transmit counter and takes its share of the radio's airtime.
    void set_client_load(const std::string& ifname, uint32_t mbps);
    void set_stations(const std::string& ifname, const std::vector<SimStation>& stations);
    // What the driver was asked to do: "wds_delete ath1 02:00:00:00:00:09".
    const std::vector<std::string>& actions() const { return actions_; }
    int reconnects(const std::string& ifname) const;

    int ioctl(unsigned long request, void* arg) override;
    bool tool(const std::string& cmdline, std::string* output, int* status) override;
    long file(const char* path, char* buf, size_t size) override;
    // Keep-alive frames count as the link's traffic, unless the link says
    // otherwise or has stalled.
    void frame_sent(const char* ifname, size_t len) override;

private:
    struct Counted {
        SimLink link;
        int64_t since_ms = 0;  // counters hold their bytes up to here
        uint32_t client_mbps = 0;
        int reconnects = 0;
    };
    void catch_up(Counted* c);
    uint8_t radio_util(const char* ifname) const;
    int station_table(const char* ifname, void* reply, uint16_t* length);
    int access_point(const char* ifname, uint8_t* bssid);
    int mode(const char* ifname, uint32_t* mode) const;
    bool counters(const std::string& ifname, uint64_t* tx, uint64_t* rx);

    SimHost* host_;
    SimLoop* loop_;
    std::map<std::string, Counted> links_;
    std::map<std::string, std::vector<SimStation>> stations_;
    std::vector<std::string> actions_;
};

}  // namespace lynd

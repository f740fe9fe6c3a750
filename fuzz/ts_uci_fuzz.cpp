// Traffic-separation settings as UCI holds them, one value a line for a
// fixed walk of keys, through the loader that adds interface records.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "config/lynd_config.h"
#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_seams.h"
#include "wlan/traffic_separation.h"

namespace {

const char* const kKeys[] = {
    "traffic_separation.traffic_separation.enable", "wificommonCfg.settings.mesh_enable",
    "traffic_separation.traffic_separation.primary_vlan", "traffic_separation.traffic_separation.ts_policy_count",
    "sysmode.sysmode.mode", "wireless.ath0.ssid", "wireless.ath1.ssid"};
constexpr int kPolicyKeys = 8;  // vlan_id, ssid, is_primary of policies 0..7, after the fixed keys
// The last line, when present: how many more ports carrying every VLAN the
// file lists, so the records the loader adds can reach the table's end.
constexpr int kBaseInterfaces = 4;

// Returns how many records the file gave.
uint64_t base_config(lynd_config* conf, unsigned long more_ports) {
    *conf = lynd_config{};
    const char* names[] = {"eth1", "ath12", "ath0", "ath1"};
    for (const char* n : names) {
        conf_interface& i = conf->interfaces[conf->n_interfaces++];
        std::strncpy(i.name, n, LYND_NAME_LEN - 1);
    }
    conf->interfaces[0].support_ts_vlan = true;
    conf->interfaces[1].support_ts_vlan = true;
    conf->interfaces[2].ts_vap = true;
    conf->interfaces[3].ts_vap = true;
    if (more_ports > LYND_MAX_INTERFACES - kBaseInterfaces)
        more_ports = LYND_MAX_INTERFACES - kBaseInterfaces;
    for (unsigned long k = 0; k < more_ports; k++) {
        conf_interface& i = conf->interfaces[conf->n_interfaces++];
        std::snprintf(i.name, LYND_NAME_LEN, "lan%lu", k);
        i.support_ts_vlan = true;
    }
    return conf->n_interfaces;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzSeams& s = fuzz_seams();
    s.uci = lynd::SimUci{};
    std::string text(reinterpret_cast<const char*>(data), size);
    size_t pos = 0;
    auto next = [&]() {
        size_t nl = text.find('\n', pos);
        std::string v = text.substr(pos, nl == std::string::npos ? std::string::npos : nl - pos);
        pos = nl == std::string::npos ? text.size() : nl + 1;
        return v;
    };
    for (const char* k : kKeys)
        s.uci.set(k, next());
    for (int p = 0; p < kPolicyKeys; p++) {
        std::string at = "traffic_separation.@ts_policy[" + std::to_string(p) + "].";
        s.uci.set(at + "vlan_id", next());
        s.uci.set(at + "ssid", next());
        s.uci.set(at + "is_primary", next());
    }
    unsigned long more_ports = std::strtoul(next().c_str(), nullptr, 10);
    static lynd_config conf;
    uint64_t file_records = base_config(&conf, more_ports);
    traffic_separation_config_load(&conf);
    traffic_separation_config_load(&conf);  // a reload on the same table
    fuzz_check(conf.n_interfaces <= LYND_MAX_INTERFACES, "interface count");
    fuzz_check(conf.n_interfaces >= file_records, "file records kept");
    fuzz_check(conf.ts.vlan_count <= TS_MAX_VLANS && conf.ts.policy_count <= TS_MAX_POLICIES, "ts counts");
    for (uint64_t i = 0; i < conf.n_interfaces; i++)
        fuzz_check(std::memchr(conf.interfaces[i].name, '\0', LYND_NAME_LEN) != nullptr, "name terminated");
    return 0;
}

// Datagrams from the bridge and the kernel, read by the daemon's own
// handlers (type filters included) and handed to both modules running on a
// small extender: new hc entries, fdb updates, reconfiguration requests,
// station departures.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "config/config.h"
#include "event/bridge_events.h"
#include "event/event_hub.h"
#include "event/wifi_events.h"
#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_seams.h"
#include "modules/loop_avoidance/loop_avoidance.h"
#include "modules/path_selection/hc_records.h"
#include "modules/path_selection/path_selection.h"

namespace {

const char* const kConfig = R"({"enable": true,
    "bridges": {"br-lan": {"loop_avoidance": true, "path_selection": true, "hc_enable": true}},
    "param": {"period": 10, "short_period": 2},
    "interfaces": {"eth1": {"type": "ethernet", "path": true, "nonrelay": true, "compat_group": 2},
        "ath02": {"type": "2.4g", "path": true, "nonrelay": true},
        "ath12": {"type": "5g", "path": true, "nonrelay": true},
        "ath0": {"type": "2.4g", "path": true}, "ath1": {"type": "5g", "path": true}}})";

lynd_config* node(FuzzSeams& s) {
    static lynd_config conf;
    static bool ready = false;
    if (ready)
        return &conf;
    const std::pair<const char*, unsigned> ifs[] = {{"br-lan", 2}, {"eth1", 3}, {"ath02", 11},
                                                    {"ath12", 12}, {"ath0", 20}, {"ath1", 21}};
    s.bridge.add_bridge("br-lan");
    for (const auto& i : ifs) {
        s.host.add_interface({i.first, i.second, {}});
        if (i.second != 2)
            s.bridge.add_port("br-lan", i.first);
    }
    (void)config_parse(&conf, kConfig, std::strlen(kConfig));
    event_init(&conf.ev);
    (void)loop_avoidance_init(&conf);
    (void)path_selection_init(&conf);
    ready = true;
    return &conf;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzSeams& s = fuzz_seams();
    lynd_config* conf = node(s);
    if (size == 0)
        return 0;
    bool wifi = data[0] & 1;
    std::string datagram(reinterpret_cast<const char*>(data) + 1, size - 1);
    s.host.queue_datagram(wifi ? 0 : HYFI_EVENT_PROTOCOL, datagram);
    if (wifi)
        event_wifi_nl_cb(&conf->ev.wifi_fd, lynd::LOOP_FD_READ);
    else
        event_hyfi_nl_cb(&conf->ev.hyfi_fd, lynd::LOOP_FD_READ);
    int used = 0;
    for (const auto& c : hc_entrys)
        used += c.path_node.next != nullptr;
    fuzz_check(used <= HC_MAX_CLIENTS, "pool");
    return 0;
}

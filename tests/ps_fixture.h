// A node with a 2.4G and a 5G backhaul path, access points and records set
// by hand, for the path-selection steps that follow the bridge's tables.
#pragma once
#include <cstring>
#include <string>

#include "conf_builder.h"
#include "modules/path_selection/hc_records.h"
#include "modules/path_selection/preferred_guard.h"
#include "sim/node/wlan_platform_sim.h"
#include "sim_fixture.h"

class PathSelectionTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        host.set_driver(&wlan);
        int idx[] = {2, 12, 20, 21, 3};
        const char* names[] = {"ath02", "ath12", "ath0", "ath1", "eth1"};
        for (int i = 0; i < 5; i++)
            host.add_interface({names[i], static_cast<unsigned>(idx[i]), {}});
        bridge.add_bridge("br-lan");
        add_bridge(conf, "br-lan", BR_FLAG_LOOP_AVOIDANCE | BR_FLAG_PATH_SELECTION).ps_flags = PS_FLAG_HC;
        conf.param.handle_count = 1;
        conf.param.busy_count_threshold = 3;
        conf.param.adjusted_ratio = 50;
        conf.param.period = 10000;
        path_selection_state_reset();
        preferred_guard_reset();
        g_ps_conf = &conf;
        path(IF_TYPE_2G, "ath02", 1);
        path(IF_TYPE_5G, "ath12", 3);
        for (uint32_t t = 0; t < IF_TYPE_MAX; t++)
            lynd_list_init(&hc_paths[t].clients);
    }
    void path(uint32_t type, const char* name, uint8_t priority) {
        hc_path& p = hc_paths[type];
        p = hc_path{};
        std::snprintf(p.name, sizeof p.name, "%s", name);
        p.type = static_cast<uint8_t>(type);
        p.priority = priority;
        p.path = 1;
        p.state = PATH_NORMAL;
        lynd_list_init(&p.clients);
    }
    // A client from the pool on path type, coming in on ifindex src.
    hc_client* client(uint8_t last, uint32_t type, uint32_t src = 21) {
        hc_client* c = hc_pool_alloc();
        c->hc.mac[0] = 0x10;
        c->hc.mac[5] = last;
        std::memcpy(c->hc.id, c->hc.mac, 6);
        c->hc.src_port = src;
        c->hc.dst_port = type == IF_TYPE_2G ? 2 : 12;
        c->sta_type = type == IF_TYPE_2G ? 1 : 2;
        lynd_list_add_tail(&c->path_node, &hc_paths[type].clients);
        return c;
    }
    static std::string mac_of(uint8_t last) {
        char s[18];
        std::snprintf(s, sizeof s, "10:00:00:00:00:%02x", last);
        return s;
    }
    bool on(const hc_client* c, uint32_t type) {
        for (lynd_list* n = hc_paths[type].clients.next; n != &hc_paths[type].clients; n = n->next)
            if (hc_client_of_path_node(n) == c)
                return true;
        return false;
    }

    lynd_config conf{};
    lynd::SimWlan wlan{&host, &loop};
};

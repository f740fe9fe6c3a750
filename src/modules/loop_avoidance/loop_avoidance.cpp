#include "modules/loop_avoidance/loop_avoidance.h"

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <new>

#include "bridge/hybrid_tables.h"
#include "bridge/port_inventory.h"
#include "core/log.h"
#include "core/mac.h"
#include "event/event_dispatch.h"
#include "modules/loop_avoidance/bcast_port.h"
#include "modules/loop_avoidance/bridge_config.h"
#include "node/host_stats.h"
#include "platform/seams.h"
#include "wlan/wlan.h"

namespace {

constexpr const char* kFn = "loop_avoidance_event_cb";

// The module's record: the retry of a broadcast file write lives with it.
struct la_module {
    lynd_module base;
    lynd::LoopTimer file_retry;
    lynd_config* conf;
};

la_module* la_of(lynd_module* m) { return static_cast<la_module*>(lynd_container_of(m, offsetof(la_module, base))); }

void on_file_retry(lynd::LoopTimer* t) {
    la_module* la = static_cast<la_module*>(lynd_container_of(t, offsetof(la_module, file_retry)));
    (void)loop_avoidance_write_bcast_file(la->conf);
}

void apply_switch(uint32_t* flags, uint32_t bit, uint32_t value) {
    if (value == TRI_ON)
        *flags |= bit;
    else if (value != TRI_KEEP)
        *flags &= ~bit;
}

void on_configure(lynd_config* conf, const configure_event* ev) {
    LYND_DEBUG_AS(kFn, "get configure event");
    loop_avoidance_update_running_state(conf, ev);
    if (ev->mode == WORK_MODE_INVALID)
        loop_avoidance_configure_bridge(conf);
    else
        loop_avoidance_configure_bridge_with_mode(conf, ev->mode);
}

void on_link_change(lynd_config* conf, const void* data) {
    uint32_t reconfig = 0;
    if (data != nullptr)
        std::memcpy(&reconfig, data, sizeof reconfig);
    if (reconfig == 1) {
        LYND_WARN_AS(kFn, "reconfig bridge");
        loop_avoidance_configure_bridge(conf);
    }
    loop_avoidance_flush_tables(conf);
    loop_avoidance_set_bcast_port(conf);
}

void on_bridge(lynd_config* conf, const bridge_event* ev) {
    LYND_DEBUG_AS(kFn, "bridge type:%d\n", static_cast<int>(ev->msg_type));
    switch (ev->msg_type) {
        case MSG_BCAST_UPDATE:
        case MSG_BCAST_UPDATE_2:
            loop_avoidance_set_bcast_port(conf);
            break;
        case MSG_FDB_UPDATE:
            if (ev->data == nullptr || ev->data_len < FDB_UPDATE_MIN_LEN) {
                LYND_ERR_AS(kFn, "fdb update of %llu bytes, %zu needed: dropped",
                            static_cast<unsigned long long>(ev->data_len), FDB_UPDATE_MIN_LEN);
                break;
            }
            loop_avoidance_event_fdb_update(conf, ev->data);
            break;
        case MSG_RECONFIGURE:
        case MSG_RECONFIGURE_2:
            if (conf->brconf_mode == 1)
                break;
            loop_avoidance_configure_bridge(conf);
            loop_avoidance_flush_tables(conf);
            break;
        default:
            break;
    }
}

// The address was learnt on the bridge itself, on a wired port, or on a
// wireless uplink: it is no longer behind a WDS station.
bool learnt_away_from_wds(lynd_config* conf, const char* ifname, conf_interface* const* ports, int count) {
    if (std::strncmp(ifname, conf->bridges[0].name, LYND_NAME_LEN) == 0)
        return true;
    for (int k = 0; k < count; k++) {
        const conf_interface* p = ports[k];
        if (std::strncmp(p->name, ifname, LYND_NAME_LEN) != 0 || lynd_check_eth_has_neigh(conf, p->name))
            continue;
        if (p->type == IF_TYPE_ETH || !p->relay)
            return true;
    }
    return false;
}

}  // namespace

lynd_module* loop_avoidance_init(lynd_config* conf) {
    la_module* la = new (std::nothrow) la_module{};
    if (la == nullptr) {
        LYND_ERR("malloc");
        return nullptr;
    }
    la->conf = conf;
    la->file_retry.cb = on_file_retry;
    lynd_module* m = &la->base;
    m->name = "Loop avoidance";
    m->id = LYND_MODULE_LOOP_AVOIDANCE;
    m->finit = loop_avoidance_finit;
    m->listener.cb = loop_avoidance_event_cb;
    event_add_listener(&conf->ev, &m->listener);
    return m;
}

void loop_avoidance_finit(lynd_module* module) {
    la_module* la = la_of(module);
    if (la->file_retry.pending)
        (void)lynd::loop().timer_cancel(&la->file_retry);
    event_del_listener(&module->listener);
    delete la;
}

void loop_avoidance_retry_later(lynd_config* conf) {
    lynd_module* m = conf->modules.next != nullptr ? lynd_get_mod_contex(&conf->modules, LYND_MODULE_LOOP_AVOIDANCE)
                                                   : nullptr;
    if (m == nullptr)
        return;
    la_module* la = la_of(m);
    uint32_t ms = conf->param.period != 0 ? conf->param.period : LA_FILE_RETRY_DEFAULT_MS;
    if (!la->file_retry.pending)
        (void)lynd::loop().timer_set(&la->file_retry, static_cast<int>(ms));
}

void loop_avoidance_event_cb(lynd_config* conf, event_listener*, uint32_t type, void* data) {
    LYND_DEBUG("event %d\n", static_cast<int>(type));
    switch (type) {
        case EVENT_STARTUP:
            loop_avoidance_configure_bridge(conf);
            break;
        case EVENT_CONFIGURE:
            on_configure(conf, static_cast<const configure_event*>(data));
            break;
        case EVENT_LINK_STATE:
        case EVENT_TS:
            on_link_change(conf, data);
            break;
        case EVENT_BRIDGE:
            on_bridge(conf, static_cast<const bridge_event*>(data));
            break;
        default:
            break;
    }
}

void loop_avoidance_update_running_state(lynd_config* conf, const configure_event* ev) {
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        uint32_t* flags = &conf->bridges[i].ps_flags;
        apply_switch(flags, PS_FLAG_HC, ev->hc_enable);
        apply_switch(flags, PS_FLAG_FOLLOW_RE, ev->follow_re);
        apply_switch(flags, PS_FLAG_TCP_SP, ev->tcp_sp);
    }
}

void loop_avoidance_flush_tables(lynd_config* conf) {
    lynd_flush_preferred(conf);
    lynd_flush_hc_table(conf);
    lynd_flush_hip_table(conf);
}

void loop_avoidance_event_fdb_update(lynd_config* conf, const uint8_t* entry) {
    loop_avoidance_delete_wds_entry(conf, entry);
    const uint8_t* m = entry;
    LYND_DEBUG("flush fc flow by mac: %s", lynd_mac(m, ':', true).s);
    (void)lynd_flush_fc_flow_by_mac(entry);
}

void loop_avoidance_delete_wds_entry(lynd_config* conf, const uint8_t* entry) {
    if (conf == nullptr || entry == nullptr || conf->n_bridges == 0)
        return;
    uint32_t ifindex = static_cast<uint32_t>(entry[12]) << 8 | entry[6];
    char ifname[LYND_NAME_LEN] = {};
    if (!lynd::host().if_indextoname(ifindex, ifname))
        return;
    LYND_DEBUG("update fdb from if: %s", ifname);
    conf_interface* ports[LYND_MAX_PORTS];
    int count = lynd_get_active_ports(conf, conf->bridges[0].name, ports);
    if (!learnt_away_from_wds(conf, ifname, ports, count))
        return;
    for (int k = 0; k < count; k++) {
        const conf_interface* p = ports[k];
        if (!p->relay || p->type < IF_TYPE_2G || p->type >= IF_TYPE_MAX)
            continue;
        char base[LYND_NAME_LEN] = {};
        (void)std::sscanf(p->name, "%15[^.]", base);
        wlan_delete_wds_entry(base, entry);
    }
}

#include "wlan/traffic_separation.h"

#include <cstring>

#include "config/ts_vlan.h"
#include "core/queries.h"
#include "core/vlan_name.h"
#include "core/log.h"
#include "wlan/qca/ts_settings_qca.h"

namespace {

// The helpers log for the load they serve.
constexpr const char* kFn = "traffic_separation_config_load";
constexpr uint32_t kMaxVid = 4095;

struct policy_walk {
    uint32_t stored;
    bool vlans_full;
    bool policies_full;
};

// False when vid is new and vlan_ids has no room for it.
bool add_ts_vlan(lynd_config* conf, uint32_t vid) {
    conf_ts& ts = conf->ts;
    if (lynd_is_ts_vlan(conf, vid))
        return true;
    if (ts.vlan_count == TS_MAX_VLANS)
        return false;
    ts.vlan_ids[ts.vlan_count++] = vid;
    return true;
}

// A policy whose VLAN finds no room is dropped whole: no port would carry it.
void read_policy(lynd_config* conf, uint32_t i, policy_walk* walk) {
    uint32_t vid = wlan_get_ts_vid_by_index(i);
    if (vid < 1 || vid > kMaxVid)
        return;
    if (!add_ts_vlan(conf, vid)) {
        walk->vlans_full = true;
        return;
    }
    if (walk->stored == TS_MAX_POLICIES) {
        walk->policies_full = true;
        return;
    }
    char ssid[TS_SSID_LEN] = {};
    if (!wlan_get_ts_policy_ssid_by_index(ssid, sizeof ssid, i))
        return;
    ts_policy& p = conf->ts.policies[walk->stored++];
    p.vlan_id = vid;
    std::memcpy(p.ssid, ssid, sizeof ssid);
    p.is_primary = wlan_get_ts_policy_is_pri_by_index(i) != 0;
}

// Fills vlan_ids and policies; the number of policies stored.
uint32_t read_policies(lynd_config* conf, uint32_t count) {
    if (count > TS_MAX_POLICY_INDEXES) {
        LYND_WARN_AS(kFn, "ts policy count %u, only the first %u policies are read", count, TS_MAX_POLICY_INDEXES);
        count = TS_MAX_POLICY_INDEXES;
    }
    policy_walk walk{};
    for (uint32_t i = 0; i < count; i++) {
        if (walk.stored == TS_MAX_POLICIES && conf->ts.vlan_count == TS_MAX_VLANS) {
            LYND_WARN_AS(kFn, "ts tables full, policies from index %u on are ignored", i);
            break;
        }
        read_policy(conf, i, &walk);
    }
    if (walk.vlans_full)
        LYND_WARN_AS(kFn, "more than %d ts vlans, the policies of the others are ignored", TS_MAX_VLANS);
    if (walk.policies_full)
        LYND_WARN_AS(kFn, "more than %d ts policies, the others are ignored", TS_MAX_POLICIES);
    return walk.stored;
}

// One record per TS VLAN after the cursor m; false when the table is full.
bool add_vlan_records(lynd_config* conf, conf_interface& port, uint64_t* m) {
    LYND_DEBUG_AS(kFn, "port:%s support ts vlan", port.name);
    for (uint32_t k = 0; k < conf->ts.vlan_count; k++) {
        if (*m >= LYND_MAX_INTERFACES) {
            LYND_ERR_AS(kFn, "can't find an empty entry to add ts port");
            return false;
        }
        uint32_t vid = conf->ts.vlan_ids[k];
        conf_interface& rec = conf->interfaces[*m];
        rec = port;
        LYND_DEBUG_AS(kFn, "new m:%d, interface_name:%s", static_cast<int>(*m), port.name);
        lynd_get_vlan_name(rec.name, port.name, vid, true);
        LYND_DEBUG_AS(kFn, "newinterface_name:%s", rec.name);
        rec.ts_vlan_id = vid;
        rec.is_ts_vlan = true;
        rec.support_ts_vlan = false;
        LYND_DEBUG_AS(kFn, "newinterface:%s ts_vlan_id: %d is_ts_vlan: %d\n", rec.name, rec.ts_vlan_id, rec.is_ts_vlan);
        (*m)++;
    }
    port.ts_vlan_id = conf->ts.primary_vlan;
    return true;
}

// The first policy with the access point's SSID gives its VLAN; false when
// the SSID cannot be read.
bool assign_vap_vlan(const conf_ts& ts, conf_interface& vap) {
    char ssid[TS_SSID_LEN] = {};
    if (!wlan_get_ssid_by_ifname(vap.name, ssid)) {
        LYND_ERR_AS(kFn, "get ssid faild");
        return false;
    }
    LYND_DEBUG_AS(kFn, "ts_vap_interface:%s, ssid:%s", vap.name, ssid);
    for (uint32_t i = 0; i < ts.policy_count; i++) {
        if (std::strcmp(ts.policies[i].ssid, ssid) == 0) {
            vap.ts_vlan_id = ts.policies[i].vlan_id;
            break;
        }
    }
    return true;
}

// Gives every file record its VLAN and appends the VLAN records; false when
// the table ran out of room.
bool assign_interfaces(lynd_config* conf, uint64_t n, uint64_t* m) {
    for (uint64_t i = 0; i < n; i++) {
        conf_interface& r = conf->interfaces[i];
        if (r.support_ts_vlan) {
            if (!add_vlan_records(conf, r, m))
                return false;
        } else if (r.ts_vap) {
            if (!assign_vap_vlan(conf->ts, r))
                continue;
        } else if (!r.is_ts_vlan) {
            r.ts_vlan_id = conf->ts.primary_vlan;
        }
        LYND_DEBUG_AS(kFn, "interface:%s ts_vlan_id:%d is_ts_vlan:%d", r.name, r.ts_vlan_id, r.is_ts_vlan);
    }
    return true;
}

}  // namespace

void lynd_ts_config_reset(lynd_config* conf) {
    uint64_t removed = 0;
    for (uint64_t i = 0; i < conf->n_interfaces && i < LYND_MAX_INTERFACES; i++) {
        conf_interface& r = conf->interfaces[i];
        if (r.is_ts_vlan) {
            r = conf_interface{};
            removed++;
        } else {
            r.ts_vlan_id = 0;
        }
    }
    conf->n_interfaces -= removed;
}

void traffic_separation_config_load(lynd_config* conf) {
    // Switched off, the block keeps what was read: the dump shows it and
    // loop avoidance compares against the primary VLAN regardless.
    conf_ts& ts = conf->ts;
    ts.enable = wlan_get_ts_enable(lynd_get_work_mode()) == 1;
    if (!ts.enable) {
        LYND_INFO("TS is %s,exit TS mode", "off");
        lynd_ts_config_reset(conf);
        return;
    }
    ts.primary_vlan = wlan_get_ts_primary_vid();
    LYND_DEBUG("ts primary vlan is %d", ts.primary_vlan);
    uint32_t count = wlan_get_ts_policy_count();
    ts.policy_count = count;
    LYND_DEBUG("ts policy count is %d", count);
    ts.vlan_count = 0;
    uint32_t stored = read_policies(conf, count);
    lynd_ts_config_reset(conf);
    ts.policy_count = stored;
    LYND_DEBUG("ts policy count:%d, vlan count is %d", ts.policy_count, ts.vlan_count);
    if (ts.primary_vlan == 0 || ts.policy_count == 0 || ts.vlan_count == 0) {
        ts.enable = false;
        LYND_INFO("LYND exit TS mode");
        lynd_ts_config_reset(conf);
        return;
    }
    for (uint32_t k = 0; k < ts.vlan_count; k++)
        LYND_DEBUG("ts vlan_id[%d] %d", k, ts.vlan_ids[k]);
    // New records go after the file's: a nameless file record is never free.
    uint64_t n = conf->n_interfaces;
    uint64_t m = n;
    if (!assign_interfaces(conf, n, &m)) {
        for (uint64_t i = n; i < LYND_MAX_INTERFACES; i++)
            conf->interfaces[i] = conf_interface{};  // written but never counted
        return;
    }
    conf->n_interfaces = m;
    LYND_DEBUG("conf->n_interfaces: %d->%d", static_cast<int>(n), static_cast<int>(m));
}

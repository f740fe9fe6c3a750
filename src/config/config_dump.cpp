#include "config/config.h"
#include "core/log.h"

namespace {

// The helpers print for the dump as a whole.
constexpr const char* kFn = "config_dump";

void dump_bridges(const lynd_config* conf) {
    LYND_INFO_AS(kFn, "Bridges:");
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        const conf_bridge& b = conf->bridges[i];
        LYND_INFO_AS(kFn, "%s ==> flags: %d, loop_avoidance: %d, path_selection: %d", b.name, b.flags,
                  (b.flags & BR_FLAG_LOOP_AVOIDANCE) ? 1 : 0, (b.flags & BR_FLAG_PATH_SELECTION) ? 1 : 0);
    }
}

void dump_interfaces(const lynd_config* conf) {
    LYND_INFO_AS(kFn, "Interfaces:");
    for (uint64_t i = 0; i < conf->n_interfaces; i++) {
        const conf_interface& r = conf->interfaces[i];
        LYND_INFO_AS(kFn, "%s ==>type: %d, compat_group: %d, relay: %d, ts_vap:%d, ts_vlan:%d, ts_vid:%d, support_ts:%d "
                  "if_class:%d",
                  r.name, r.type, r.compat_group, r.relay, r.ts_vap, r.is_ts_vlan, r.ts_vlan_id, r.support_ts_vlan,
                  r.if_class);
    }
}

void dump_ts(const conf_ts& ts) {
    LYND_INFO_AS(kFn, "-----------dump TS info--------------------------------------");
    LYND_INFO_AS(kFn, "TS enable:%d, \tprimary_vlan:%d, \tpolicy_count:%d, \tvlan_count:%d", ts.enable, ts.primary_vlan,
              ts.policy_count, ts.vlan_count);
    for (uint32_t i = 0; i < ts.policy_count && i < TS_MAX_POLICIES; i++)
        LYND_INFO_AS(kFn, "policy[%d].vlan_id:%d, is_primary:%d, ssid:%s", i, ts.policies[i].vlan_id,
                  ts.policies[i].is_primary, ts.policies[i].ssid);
    LYND_INFO_AS(kFn, "-----------dump TS info end-----------------------------------");
}

}  // namespace

void config_dump(const lynd_config* conf) {
    if (!lynd_log_on(LYND_LVL_INFO))
        return;
    dump_bridges(conf);
    dump_interfaces(conf);
    LYND_INFO_AS(kFn, "Param:");
    LYND_INFO_AS(kFn, "\tperiod: %d, low_threhold: %d", conf->param.period, conf->param.low_threshold);
    dump_ts(conf->ts);
}

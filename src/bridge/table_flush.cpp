#include "bridge/hybrid_tables.h"
#include "bridge/port_inventory.h"
#include "core/counters.h"
#include "core/log.h"
#include "platform/seams.h"

void lynd_flush_hybr_table(lynd_config* conf, int kind) {
    lynd::KrelApi& krel = lynd::krel();
    for (uint64_t i = 0; i < conf->n_bridges; i++) {
        const conf_bridge& br = conf->bridges[i];
        if (!lynd_check_active_bridge(br.name) || (br.flags & BR_FLAG_LOOP_AVOIDANCE) == 0)
            continue;
        switch (kind) {
        case HYBR_TABLE_HC:
            if (krel.bridgeFlushHCTable(br.name) != 0) {
                LYND_ERR("bridgeFlushHCTable");
                g_counters.bridge_call_failures++;
            }
            break;
        case HYBR_TABLE_HIP:
            if (krel.bridgeFlushHipTable(br.name) != 0) {
                LYND_ERR("bridgeFlushHipTable");
                g_counters.bridge_call_failures++;
            }
            break;
        default:
            LYND_ERR("unknown enum_hybr_table_type: %d", kind);
            break;
        }
    }
}

void lynd_flush_hc_table(lynd_config* conf) { lynd_flush_hybr_table(conf, HYBR_TABLE_HC); }

void lynd_flush_hip_table(lynd_config* conf) { lynd_flush_hybr_table(conf, HYBR_TABLE_HIP); }

// Traffic separation: the TS block of the configuration and the VLAN
// sub-interface records it adds to the interface table.
#pragma once
#include <cstdint>

#include "config/lynd_config.h"

// UCI may claim any number of policies; no more indexes than this are read.
constexpr uint32_t TS_MAX_POLICY_INDEXES = 1024;

// (Re)builds conf->ts and the TS parts of the interface table from UCI. When
// separation ends up off, the block is zero and only the file's records stay.
void traffic_separation_config_load(lynd_config* conf);

// Drops the VLAN records an earlier load appended; clears every ts_vlan_id.
void lynd_ts_config_reset(lynd_config* conf);

// The "Loop avoidance" module: it reprograms the bridges, flushes their
// tables and picks broadcast ports as events arrive, and removes stale WDS
// entries once the bridge has learnt a client elsewhere.
#pragma once
#include "bridge/table_entries.h"
#include "config/lynd_config.h"
#include "modules/module.h"

// Bytes of a forwarding-table message that are read: MAC, index low byte at
// 6, high byte at 12.
constexpr size_t FDB_UPDATE_MIN_LEN = 13;

// Pause before a state file that could not be written is tried again,
// when the configuration has no period.
constexpr uint32_t LA_FILE_RETRY_DEFAULT_MS = 10000;

lynd_module* loop_avoidance_init(lynd_config* conf);
// Arms the module's retry of the broadcast file for the next period.
void loop_avoidance_retry_later(lynd_config* conf);
void loop_avoidance_finit(lynd_module* module);
void loop_avoidance_event_cb(lynd_config* conf, event_listener* listener, uint32_t type, void* data);
void loop_avoidance_update_running_state(lynd_config* conf, const configure_event* ev);
void loop_avoidance_flush_tables(lynd_config* conf);
void loop_avoidance_event_fdb_update(lynd_config* conf, const uint8_t* entry);
void loop_avoidance_delete_wds_entry(lynd_config* conf, const uint8_t* entry);

// The client records follow the bridge's hc table at the start of every
// period run: created, re-filed under the path their entry points at, and
// dropped once the bridge no longer has them.
#pragma once
#include "bridge/table_entries.h"
#include "config/lynd_config.h"
#include "modules/path_selection/hc_records.h"

// The hc entries recorded, or -1 when the table could not be read.
int path_selection_update_hc_clients(conf_bridge* bridge, hc_path* paths, const client_entry* clients, int n_clients);

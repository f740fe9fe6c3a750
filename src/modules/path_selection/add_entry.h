// The bridge reports a new hc entry: the client joins the records.
#pragma once
#include "bridge/table_entries.h"

void path_selection_event_add_entry_hc(const hc_entry* entry);

// Debug requests that reach the algorithm: the dump tables, forced
// overload, and injected link figures.
#pragma once
#include "core/event_records.h"

void path_selection_event_debug_hc(const debug_event* ev);

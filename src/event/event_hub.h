// The event hub's life: the loop's set-up, the event sources, the run and the
// tear-down.
#pragma once
#include "core/event_records.h"

void event_init(event_hub* ev);
void event_loop(event_hub* ev);
void event_free(event_hub* ev);

// The event hub's life: the loop's set-up, the event sources, the run and the
// tear-down.
#pragma once
#include "core/event_records.h"

// False when an event source cannot be had: its FATAL line is out, and
// event_free still tears down what did start.
bool event_init(event_hub* ev);
void event_loop(event_hub* ev);
void event_free(event_hub* ev);

// The line every decorator builds, and where it goes once built.
#pragma once
#include "trace/trace_line.h"

namespace lynd {

// Begins the next record at the loop's time.
TraceLine& trace_begin(const char* kind);
// Ends the record and hands it to the file (or to the start-up buffer).
void trace_emit();

}  // namespace lynd

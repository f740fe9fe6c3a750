// The line every decorator builds, and where it goes once built.
#pragma once
#include "trace/trace_line.h"

namespace lynd {

// Begins the next record at the loop's time.
TraceLine& trace_begin(const char* kind);
// Ends the record and hands it to the file (or to the start-up buffer).
void trace_emit();
// A bus call records through the recorder's buffers until its reply is
// written: they are not given back in between, even when the call ends the
// trace.
void trace_hold();
void trace_unhold();

}  // namespace lynd

// Recording: decorators around every seam write what the daemon was told and
// what it did. Until the configuration is read the records wait in memory,
// so a trace starts with the daemon's first question; with no trace asked
// for, the decorators go again and the daemon runs on the bare seams. The
// recorder's buffers are the heap's, taken when a start may record and given
// back when no trace is on.
#pragma once
#include <cstddef>

namespace lynd {

// The directory the bus method's and the configuration's traces go to
// (default /tmp/lynd; made 0700 when missing). "" for none: such traces
// are refused.
void trace_set_dir(const char* dir);
const char* trace_dir();
// A trace asked for from outside the configuration (lynd-sim run --record):
// a path on the desk, unconfined.
void trace_request(const char* path, size_t size);
// The process's last run is over (a simulated node is switched off): the
// traces asked for from outside hold no longer, so the next node boots with
// none, as a router does.
void trace_forget_requests();
// Nothing is recorded while set (a replay must not write over its trace).
void trace_forbid(bool forbid);
// The first thing of a run: the decorators go in front of the seams.
void trace_startup(int argc, char** argv, const char* version);
// After the configuration: records go on to name in the trace directory
// (a trace asked for by the bus method or the desk wins), or, with none,
// the decorators are removed. A trace that cannot start says why in a line.
void trace_settle(const char* name, size_t size);
// A fresh trace to the desk path from now on (a trace that starts mid-run),
// or the end of the trace and of any trace asked for by the bus method.
// 0, or -errno.
int trace_control(const char* path, size_t size, bool enable);
// The bus method's trace, name in the trace directory: it begins at the
// daemon's next start in this process (the caller restarts the run), so it
// replays like a boot trace, and holds for later starts until ended. 0, or
// -errno after a line that says why (a bad name, a size over the cap, a
// directory or name not the daemon's, too little room, no memory); nothing
// is asked while recording is forbidden.
int trace_call_request(const char* name, size_t size);
// The end of a run: the last records written, the seams given back.
void trace_finish();
// The end of a run that could not start: a trace asked for from outside
// (the bus method, the desk) is still written, so it tells why.
void trace_finish_fatal();
bool trace_recording();
const char* trace_path();

}  // namespace lynd

// Recording: decorators around every seam write what the daemon was told and
// what it did. Until the configuration is read the records wait in memory,
// so a trace starts with the daemon's first question; with no trace asked
// for, the decorators go again and the daemon runs on the bare seams.
#pragma once
#include <cstddef>

namespace lynd {

// A trace asked for from outside the configuration (lynd-sim run --record).
void trace_request(const char* path, size_t size);
// Nothing is recorded while set (a replay must not write over its trace).
void trace_forbid(bool forbid);
// The first thing of a run: the decorators go in front of the seams.
void trace_startup(int argc, char** argv, const char* version);
// The configuration file's first read is kept for the trace's header.
void trace_watch_config(const char* config_path);
// After the configuration: records go on to path (the asked-for file wins),
// or, with neither, the decorators are removed.
void trace_settle(const char* path, size_t size);
// A fresh trace to path from now on (a trace that starts mid-run), or the
// end of the trace and of any trace asked for by the bus method. 0, or -errno.
int trace_control(const char* path, size_t size, bool enable);
// The bus method's trace: it begins at the daemon's next start in this
// process (the caller restarts the run), so it replays like a boot trace,
// and holds for later starts until ended. 0, or -errno when path cannot be
// created; nothing is asked while recording is forbidden.
int trace_call_request(const char* path, size_t size);
// The end of a run: the last records written, the seams given back.
void trace_finish();
bool trace_recording();
const char* trace_path();

}  // namespace lynd

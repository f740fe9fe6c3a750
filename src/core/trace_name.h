// The name of a trace file as the bus or the configuration gives it: a plain
// base name inside the daemon's own trace directory, never a path.
#pragma once
#include <cstddef>

constexpr size_t TRACE_NAME_MAX = 64;  // characters, without the terminator
// Where the daemon's traces go on the router.
constexpr const char* TRACE_DIR_DEFAULT = "/tmp/lynd";

// Why name cannot name a trace ("" when it can): empty, too long, a '/', a
// "..", a leading '.' or a character outside [A-Za-z0-9._-].
const char* trace_name_refusal(const char* name);

// The first bytes of a file this daemon wrote as a trace: its header's start.
bool trace_head_is_ours(const char* head, size_t n);

// Whether a trace may go to a name in a directory: a name, never a path; a
// size within the cap; a directory of this daemon's; no file there that is
// not one of its traces; room enough left on the filesystem.
#pragma once
#include <cstddef>
#include <cstdint>

#include "platform/host.h"

namespace lynd {

// What must stay free on the trace's filesystem besides its two files.
constexpr uint64_t TRACE_ROOM_MARGIN = 4 * 1024 * 1024;

// True when two files of size leave the filesystem at least the margin and
// a quarter of it free.
bool trace_room_enough(const FsSpace& fs, size_t size);

// Its steps, each 0 (or the directory's descriptor) or -errno with *why
// (text that completes "record NAME: ..."). The name and the cap:
int trace_place_name(const char* dir, const char* name, size_t size, char* why, size_t why_len);
// The directory (strict: this daemon's) and what stands at the name:
int trace_place_dir(const char* dir, const char* name, size_t size, bool strict, char* why, size_t why_len);
// The room, asked through host:
int trace_place_room(Host& host, const char* dir, size_t size, char* why, size_t why_len);

// The directory's descriptor for a trace of size at name in dir, or -errno
// with *why (text that completes "record NAME: ..."). strict: the bus's and
// the configuration's checks (name, cap, owner, room); else a desk path.
int trace_place_open(const char* dir, const char* name, size_t size, bool strict, Host& host, char* why,
                     size_t why_len);

}  // namespace lynd

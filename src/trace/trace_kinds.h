// The record types of a trace, and which of them the loop dispatches.
#pragma once

namespace lynd {

constexpr int TRACE_FORMAT_VERSION = 2;

// Records the loop hands to the daemon: a timer firing, a watched fd ready,
// a bus event, a method call, the bus lost, the run's end (a signal or end()).
bool trace_kind_is_dispatch(const char* kind);
// "little" or "big": the recording CPU, told in the header for whoever reads it.
const char* trace_host_byte_order();
bool trace_host_is_big();
// Every kind a reader accepts.
bool trace_kind_is_known(const char* kind);

}  // namespace lynd

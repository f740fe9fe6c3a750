// lynd-sim anonymize IN OUT: every MAC address (as text, and as bytes in
// datagrams, tables, frames and driver replies) and every SSID replaced by
// a stand-in, the same one wherever it appears. The first octet stays, as
// the driver's sibling addresses differ only there; the other five are
// numbered. Group and broadcast addresses stay as they are.
#pragma once
#include <functional>
#include <string>

#include "sim/desk/trace_reader_stream.h"

namespace lynd {

// Reads source through twice, streamed: the addresses and names first, then
// each line rewritten and handed to write, in order. False with error when
// source is no trace (before any line is written) or write fails.
bool trace_anonymize(const TraceSource& source, const std::function<bool(const std::string&)>& write,
                     std::string* error);
// The same for a text in memory.
bool trace_anonymize(const std::string& in, std::string* out, std::string* error);

}  // namespace lynd

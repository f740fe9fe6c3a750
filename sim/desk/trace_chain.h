// The files of one recording as one trace: a rotated file goes on from the
// part before it, and only a recording's first part holds the daemon's start.
// Pure functions: headers or parsed parts in, one trace or one error out.
#pragma once
#include <string>
#include <vector>

#include "sim/desk/trace_reader.h"

namespace lynd {

// Why a recording's part > 1 cannot be replayed without the parts before it.
std::string trace_chain_missing_start(const std::string& name, int part);
// The headers of parts in the order given, names the files they came from:
// "" when they chain, else one error that says what is missing or wrong (a
// single part > 1, parts out of sequence or of different recordings).
std::string trace_chain_headers(const std::vector<TraceHeader>& headers, const std::vector<std::string>& names);
// Where part i starts with a record older than part i - 1's last one: why.
std::string trace_chain_junction(const std::vector<std::string>& names, size_t i, int64_t last_t, int64_t first_t);
// Parsed parts as one trace; false with the error above.
bool trace_chain(std::vector<Trace> parts, const std::vector<std::string>& names, Trace* out, std::string* error);

}  // namespace lynd

// The files of one recording as one trace: a rotated file goes on from the
// part before it, and only a recording's first part holds the daemon's start.
// A pure function: parsed parts in, one trace or one error out.
#pragma once
#include <string>
#include <vector>

#include "sim/desk/trace_reader.h"

namespace lynd {

// parts in the order given, names the files they came from (for the error).
// A single part > 1, parts out of sequence or of different recordings: false
// with one error that says what is missing or wrong.
// Why a recording's part > 1 cannot be replayed without the parts before it.
std::string trace_chain_missing_start(const std::string& name, int part);
bool trace_chain(std::vector<Trace> parts, const std::vector<std::string>& names, Trace* out, std::string* error);

}  // namespace lynd

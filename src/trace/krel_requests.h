// Calls into the bridge library as a record names them. Writes are outputs:
// a replay builds the same record and compares it whole.
#pragma once
#include <cstdint>

#include "platform/krel_args.h"
#include "trace/trace_line.h"

namespace lynd {

void req_krel(TraceLine& l, const KrelArgs& a);

}  // namespace lynd

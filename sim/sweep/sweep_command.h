// lynd-sim sweep: many random scenarios through the daemon, invariants
// checked after each period run, one table; or one seed kept as a shrunk
// scenario file.
#pragma once
#include "sim/sweep/sweep_run.h"

namespace lynd {

// argv after "sweep". Exit status: 0 when nothing broke, 1 when an
// invariant did, 2 for a usage error.
int sweep_command(int argc, char** argv, SweepAllocCounter count);

}  // namespace lynd

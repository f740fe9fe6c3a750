// A run's outcome as lines of text, from the child that ran it to the
// sweep that gathers them.
#pragma once
#include <string>

#include "sim/sweep/sweep_run.h"

namespace lynd {

std::string sweep_outcome_text(const SweepOutcome& o);
// False when the text is not a whole outcome (the child died).
bool sweep_outcome_parse(const std::string& text, SweepOutcome* o);

}  // namespace lynd

// What a scenario document's configuration promises the invariants.
#pragma once
#include <json-c/json.h>

#include "sim/sweep/sweep_view.h"

namespace lynd {

SweepFacts sweep_facts(json_object* doc);

}  // namespace lynd

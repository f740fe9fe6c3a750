// The clients of a scenario: who joins which access port when, with how
// much upstream traffic, and when they leave.
#pragma once
#include <json-c/json.h>

#include "sim/json_reader.h"
#include "sim/scenario.h"

namespace lynd {

// "clients" at the top: [{"mac", "port", "mbps", "join", "leave", "path"}].
void parse_clients(JsonReader& r, json_object* root, Scenario* out);

}  // namespace lynd

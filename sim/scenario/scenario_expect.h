// Expectations on the state the daemon leaves: the bridge's switches and
// port settings, WDS deletions, path states, the preferred port, samples,
// files; and the library calls a scenario makes fail.
#pragma once
#include <json-c/json.h>

#include "sim/scenario/json_reader.h"
#include "sim/scenario/scenario.h"

namespace lynd {

// False when o is none of "bridge", "wds_deleted", "path_state",
// "preferred", "samples".
bool parse_state_expectation(JsonReader& r, json_object* o, Expectation* e);
// "equals", "absent": true, or "writes": N.
void parse_file_expectation(JsonReader& r, json_object* o, Expectation* e);
// "from" and "to", in seconds.
void parse_window(JsonReader& r, json_object* o, Expectation* e);
// {"result", "port", "from", "to"}, or a list of them, for one call name.
void parse_failure_rules(JsonReader& r, const char* call, json_object* val, Scenario* out);

}  // namespace lynd

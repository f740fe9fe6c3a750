// The radio side of a scenario: backhaul links, access-point stations, the
// CPU's occupancy and the mesh daemon's replies.
#pragma once
#include <json-c/json.h>

#include "sim/scenario/json_reader.h"
#include "sim/scenario/scenario.h"

namespace lynd {

// "links", "stations" at the top; "cpu" and "mesh" of "node".
void parse_radios(JsonReader& r, json_object* root, Scenario* out);
void parse_node_cpu(JsonReader& r, json_object* node, Scenario* out);
void parse_node_mesh(JsonReader& r, json_object* node, Scenario* out);

// Sets the fields of link that o names; false (recorded) on a bad one.
bool apply_link_fields(JsonReader& r, json_object* o, SimLink* link);

}  // namespace lynd

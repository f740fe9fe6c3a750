// The clients of a scenario: who joins which access port when, with how
// much upstream traffic, and when they leave.
#pragma once
#include <json-c/json.h>

#include "sim/scenario/json_reader.h"
#include "sim/scenario/scenario.h"

namespace lynd {

// "clients" at the top: [{"mac", "port", "mbps", "join", "leave", "path"}].
void parse_clients(JsonReader& r, json_object* root, Scenario* out);

// Timeline forms: {"at": T, "client_join": {...}} is a client that joins at
// T; {"at": T, "client_leave": MAC} makes a client known by then leave at T.
// False when o is neither.
bool parse_client_timeline(JsonReader& r, json_object* o, int64_t at_ms, Scenario* out);

// "hc_table" of "node": {"own_entry", "refill", "announce_refills"}, each
// true unless switched off.
void parse_hc_model(JsonReader& r, json_object* node, Scenario* out);

// The interfaces the daemon's configuration makes paths ("path" in its
// "interfaces", read as the daemon reads it), from the file the node holds
// at /etc/lynd.json when the scenario gives one, else from "config".
void parse_config_paths(json_object* config, Scenario* out);

}  // namespace lynd

// Scenario keys for what other processes on the node do to the daemon:
// take its netlink port ids first, send it datagrams of their own, put
// something in the way of its state files.
#pragma once
#include <json-c/json.h>

#include "sim/scenario/json_reader.h"
#include "sim/scenario/scenario.h"

namespace lynd {

// node "netlink_squat": [protocol, ...]: another process has bound the
// daemon's process id as its port on each protocol before the daemon starts.
void parse_node_squatters(JsonReader& r, json_object* node, Scenario* out);
// node "squat": {"hybr_broadcast_port": "directory", ...}: obstacles in the
// way of state files before the daemon starts.
void parse_node_file_squats(JsonReader& r, json_object* node, Scenario* out);
// An entry's "from": the port id a netlink datagram comes from (0, the
// kernel, when absent).
void parse_datagram_sender(JsonReader& r, json_object* o, TimelineEntry* e);
// {"squat": "lynd_paths_info", "as": "directory" | "foreign" | "full" | "none"}:
// false when o is no such entry.
bool parse_file_squat(JsonReader& r, json_object* o, TimelineEntry* e);

}  // namespace lynd

// The timeline's crafted datagrams: a bridge message ("netlink"), a kernel
// link message ("rtnetlink") and a station's expiry. Given by fields, each
// is laid out in host order, so one scenario means the same message on
// every CPU; "body_hex", "raw_hex" and a lying "len" are sent as written.
#pragma once
#include <json-c/json.h>

#include "sim/scenario/json_reader.h"
#include "sim/scenario/scenario.h"

namespace lynd {

// o is the whole timeline entry; sc its scenario, whose interfaces name the
// ports. Problems are recorded naming the entry by its time.
void parse_bridge_message(JsonReader& r, json_object* o, const Scenario& sc, TimelineEntry* e);
void parse_kernel_link(JsonReader& r, json_object* o, const Scenario& sc, TimelineEntry* e);
void parse_station_expiry(JsonReader& r, json_object* o, const Scenario& sc, TimelineEntry* e);

}  // namespace lynd

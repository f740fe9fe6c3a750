// The kinds of extender a sweep draws: one to three wireless backhauls,
// maybe Ethernet, one or two path-selection bridges, traffic separation
// on or off.
#pragma once
#include <string>
#include <vector>

#include <json-c/json.h>

#include "sim/sweep/sweep_rng.h"

namespace lynd {

struct SweepPath {
    std::string name;
    std::string type;  // as the configuration names it
    int ifindex;
};

struct SweepNode {
    std::vector<SweepPath> paths;
    std::vector<std::string> aps;  // the first bridge's access points
    bool ethernet = false;
    bool ts = false;
    bool two_bridges = false;
};

SweepNode sweep_draw_node(SweepRng& r);
// "enable", "bridges" and "interfaces" of the configuration.
json_object* sweep_node_config(const SweepNode& n);
// The scenario's "node": UCI, tools, interfaces and bridges.
json_object* sweep_node_json(const SweepNode& n);

}  // namespace lynd

#include "sim/scenario/scenario_squat.h"

#include <cerrno>
#include <cstring>

namespace lynd {

namespace {

struct Obstacle {
    const char* name;
    int error;
};
// A directory in the way, a file the daemon may not replace, a full disk.
constexpr Obstacle kObstacles[] = {{"directory", EISDIR}, {"foreign", EPERM}, {"full", ENOSPC}, {"none", 0}};


// A bare name is one of the daemon's state files in /tmp.
std::string state_path(const std::string& name) { return !name.empty() && name[0] == '/' ? name : "/tmp/" + name; }

int obstacle_error(JsonReader& r, const std::string& as) {
    for (const Obstacle& ob : kObstacles)
        if (as == ob.name)
            return ob.error;
    r.fail("an obstacle is \"directory\", \"foreign\", \"full\" or \"none\"");
    return 0;
}

}  // namespace

void parse_node_squatters(JsonReader& r, json_object* node, Scenario* out) {
    json_object* list = json_array_member(r, node, "netlink_squat");
    for (size_t i = 0; list != nullptr && r.ok && i < json_object_array_length(list); i++) {
        json_object* p = json_object_array_get_idx(list, i);
        int64_t proto = json_is(p, json_type_int) ? json_object_get_int64(p) : -1;
        if (proto < 0 || proto > 31)
            r.fail("\"netlink_squat\" lists netlink protocols, 0 to 31");
        else
            out->netlink_squat.push_back(static_cast<int>(proto));
    }
}

void parse_datagram_sender(JsonReader& r, json_object* o, TimelineEntry* e) {
    int64_t from = 0;
    if (json_get_int(r, o, "from", 0, UINT32_MAX, &from))
        e->from = static_cast<uint32_t>(from);
}

void parse_node_file_squats(JsonReader& r, json_object* node, Scenario* out) {
    json_object* squats = json_object_member(r, node, "squat");
    if (squats == nullptr)
        return;
    json_object_object_foreach(squats, name, as) {
        int err = json_is(as, json_type_string) ? obstacle_error(r, json_object_get_string(as)) : obstacle_error(r, "");
        out->file_squats.emplace_back(state_path(name), err);
    }
}

bool parse_file_squat(JsonReader& r, json_object* o, TimelineEntry* e) {
    std::string name, as;
    if (!json_get_string(r, o, "squat", &name, 64))
        return false;
    e->kind = TimelineKind::SQUAT;
    e->name = state_path(name);
    if (!json_get_string(r, o, "as", &as, 16))
        as = "directory";
    e->data = std::to_string(obstacle_error(r, as));
    return true;
}

}  // namespace lynd

#include "sim/scenario_squat.h"

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

bool parse_file_squat(JsonReader& r, json_object* o, TimelineEntry* e) {
    std::string name, as;
    if (!json_get_string(r, o, "squat", &name, 64))
        return false;
    e->kind = TimelineKind::SQUAT;
    e->name = !name.empty() && name[0] == '/' ? name : "/tmp/" + name;
    if (!json_get_string(r, o, "as", &as, 16))
        as = "directory";
    for (const Obstacle& ob : kObstacles)
        if (as == ob.name) {
            e->data = std::to_string(ob.error);
            return true;
        }
    r.fail("\"as\" of a squat is \"directory\", \"foreign\", \"full\" or \"none\"");
    return true;
}

}  // namespace lynd

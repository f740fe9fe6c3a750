#include "sim/scenario_clients.h"

namespace lynd {

namespace {

constexpr size_t kMaxIfname = 15;
constexpr size_t kMaxClients = 512;  // past the daemon's 256, to try its limit
constexpr int64_t kMaxMbps = 100000;

bool parse_client(JsonReader& r, json_object* o, int64_t duration_s, SimClient* c) {
    int64_t mbps = 0, join = 0, leave = -1;
    if (!json_is(o, json_type_object) || !json_get_mac(r, o, "mac", c->mac) ||
        !json_get_string(r, o, "port", &c->port, kMaxIfname))
        return r.fail("each client needs a \"mac\" and an access \"port\"");
    (void)json_get_string(r, o, "path", &c->path, kMaxIfname);
    if (json_get_int(r, o, "mbps", 0, kMaxMbps, &mbps))
        c->mbps = static_cast<uint32_t>(mbps);
    (void)json_get_int(r, o, "join", 0, duration_s, &join);
    if (json_get_int(r, o, "leave", 0, duration_s, &leave) && leave < join)
        return r.fail("a client leaves before it joins");
    c->join_ms = join * 1000;
    c->leave_ms = leave < 0 ? -1 : leave * 1000;
    return r.ok;
}

}  // namespace

void parse_clients(JsonReader& r, json_object* root, Scenario* out) {
    json_object* list = json_array_member(r, root, "clients");
    if (list == nullptr)
        return;
    if (json_object_array_length(list) > kMaxClients) {
        r.fail("\"clients\" holds more than " + std::to_string(kMaxClients));
        return;
    }
    for (size_t i = 0; r.ok && i < json_object_array_length(list); i++) {
        SimClient c;
        if (parse_client(r, json_object_array_get_idx(list, i), out->duration_s, &c))
            out->clients.push_back(c);
    }
}

}  // namespace lynd

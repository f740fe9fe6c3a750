#include "targets/check/mesh_checks.h"

#include <cstdio>
#include <cstring>

#include "config/config.h"
#include "platform/seams.h"
#include "wlan/wlan.h"

namespace {

bool is_wireless(uint32_t type) { return type >= IF_TYPE_2G && type < IF_TYPE_MAX; }

// The driver's backhaul station interface of the type (ath02, ath12, ath22).
bool is_backhaul_station(const conf_interface& f) {
    return is_wireless(f.type) && link_ifname[f.type] != nullptr && std::strcmp(f.name, link_ifname[f.type]) == 0;
}

// A bridge port has a port state; readable only while it is enslaved.
bool has_file(const char* path) {
    char c;
    return lynd::host().read_file(path, &c, 1) >= 0;
}

bool in_some_bridge(const char* ifname) {
    char path[96];
    std::snprintf(path, sizeof path, "/sys/class/net/%s/brport/state", ifname);
    return has_file(path);
}

bool in_bridge(const char* bridge, const char* ifname) {
    char path[96];
    std::snprintf(path, sizeof path, "/sys/class/net/%s/brif/%s/state", bridge, ifname);
    return has_file(path);
}

bool present(const char* name) { return lynd::host().if_nametoindex(name) != 0; }

// Findings are placed as the loader places its own.
struct place {
    char at[CONFIG_WHERE_MAX];
    place(const char* section, const char* name) { config_where(at, section, name); }
};

uint32_t check_relay_roles(const lynd_config& c, check_printer* p) {
    uint32_t n = 0;
    for (uint64_t i = 0; i < c.n_interfaces; i++) {
        const conf_interface& f = c.interfaces[i];
        if (f.relay && (f.path || is_backhaul_station(f))) {
            check_line(p, "warning", place("interfaces", f.name).at,
                       "a backhaul uplink left relay: it forwards every broadcast, so broadcasts loop through the "
                       "mesh; set \"nonrelay\": true");
            n++;
        } else if (!f.relay && is_wireless(f.type) && !f.path && !is_backhaul_station(f)) {
            check_line(p, "warning", place("interfaces", f.name).at,
                       "an access point marked nonrelay: its clients get broadcasts only while it is the chosen "
                       "broadcast port; remove \"nonrelay\"");
            n++;
        }
    }
    return n;
}

// One slot per type, taken by the last non-relay interface of the type.
uint32_t check_path_slots(const lynd_config& c, check_printer* p) {
    uint32_t n = 0;
    const conf_interface* owner[IF_TYPE_MAX] = {};
    for (uint64_t i = c.n_interfaces; i-- > 0;) {
        const conf_interface& f = c.interfaces[i];
        if (f.relay || f.type >= IF_TYPE_MAX)
            continue;
        if (owner[f.type] == nullptr) {
            owner[f.type] = &f;
            continue;
        }
        const char* label = f.path ? "warning" : "note";
        check_line(p, label, place("interfaces", f.name).at,
                   "not a path: %s, later in the file, takes the only %s path slot%s", owner[f.type]->name,
                   config_if_type_name(f.type),
                   f.path ? "; only the last non-relay interface of a type is a path" : "");
        n += f.path ? 1 : 0;
    }
    return n;
}

uint32_t check_membership(const lynd_config& c, check_printer* p) {
    uint32_t n = 0;
    int absent = 0;
    for (uint64_t i = 0; i < c.n_interfaces; i++) {
        const conf_interface& f = c.interfaces[i];
        if (!f.path)
            continue;
        if (!present(f.name)) {
            absent++;
            continue;
        }
        if (!in_some_bridge(f.name)) {
            check_line(p, "warning", place("interfaces", f.name).at, "a path interface that is not in any bridge");
            n++;
        }
    }
    if (absent > 0)
        check_line(p, "note", "interfaces", "%d path interface%s not on this machine: bridge membership not checked",
                   absent, absent == 1 ? " is" : "s are");
    return n;
}

// Non-relay ports are the uplinks loop avoidance picks a broadcast port
// from; a bridge without any cannot be kept loop-free.
uint32_t check_nonrelay_ports(const lynd_config& c, check_printer* p) {
    uint32_t n = 0;
    for (uint64_t b = 0; b < c.n_bridges; b++) {
        const conf_bridge& br = c.bridges[b];
        if ((br.flags & BR_FLAG_LOOP_AVOIDANCE) == 0)
            continue;
        bool here = present(br.name);
        int ports = 0;
        for (uint64_t i = 0; i < c.n_interfaces; i++)
            ports += !c.interfaces[i].relay && (!here || in_bridge(br.name, c.interfaces[i].name));
        if (ports == 0) {
            check_line(p, "warning", place("bridges", br.name).at,
                       "loop avoidance without a non-relay port%s: no uplink is marked \"nonrelay\"",
                       here ? " in the bridge" : "");
            n++;
        }
    }
    return n;
}

// Without a period the path-selection timer never runs.
uint32_t check_period(const lynd_config& c, check_printer* p) {
    for (uint64_t b = 0; b < c.n_bridges; b++) {
        if ((c.bridges[b].flags & BR_FLAG_PATH_SELECTION) != 0 && c.param.period == 0) {
            check_line(p, "warning", "param.period", "0 with path selection on bridge %s: paths are never rated",
                       c.bridges[b].name);
            return 1;
        }
    }
    return 0;
}

}  // namespace

uint32_t mesh_checks(const lynd_config& c, check_printer* p) {
    if (!c.enable)
        check_line(p, "note", "enable", "not true: the daemon exits at once and does nothing");
    return check_relay_roles(c, p) + check_path_slots(c, p) + check_membership(c, p) + check_nonrelay_ports(c, p) +
           check_period(c, p);
}

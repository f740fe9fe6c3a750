#include "modules/path_selection/client_rules.h"

#include "config/lynd_config.h"

namespace {

const conf_client_rule* rule_of(const uint8_t* mac) {
    if (g_ps_conf == nullptr || g_ps_conf->clients.n == 0)
        return nullptr;
    return conf_client_rule_find(g_ps_conf->clients, mac);
}

}  // namespace

bool client_mac_excluded(const uint8_t* mac) {
    const conf_client_rule* r = rule_of(mac);
    return r != nullptr && r->exclude;
}

bool client_excluded(const hc_client& c) { return client_mac_excluded(c.hc.mac); }

uint8_t client_pin(const hc_client& c) {
    const conf_client_rule* r = rule_of(c.hc.mac);
    return r != nullptr && r->pin < IF_TYPE_MAX ? r->pin : PATH_NONE;
}

uint8_t client_pinned_slot(const hc_client& c) {
    uint8_t pin = client_pin(c);
    return pin < IF_TYPE_MAX && path_is_live(hc_paths[pin]) ? pin : PATH_NONE;
}

bool client_pin_forbids(const hc_client& c, uint8_t to) {
    uint8_t slot = client_pinned_slot(c);
    return slot != PATH_NONE && slot != to;
}

#include "modules/path_selection/sampling.h"

#include <algorithm>
#include <cstring>

#include "core/log.h"
#include "core/mac.h"
#include "core/sort.h"
#include "core/vlan_name.h"
#include "wlan/wlan.h"

namespace {

constexpr const char* kFn = "path_selection_sample_wlan_sta_info";

constexpr int kMaxStaLinks = 16;
constexpr uint32_t kWiredRate = 1000;

bool is_wireless(uint32_t type) { return type >= IF_TYPE_2G && type < IF_TYPE_MAX; }

// The override applies while it names what is sampled.
const debug_path_info* override_for(uint32_t type, const char* name) {
    const debug_path_info& d = g_dbg_path_info[type];
    return std::strncmp(d.ifname, name, sizeof d.ifname) == 0 && name[0] != '\0' ? &d : nullptr;
}

void station_sample(hc_client* c, const wlan_link_info& l) {
    link_sample* s = ring_append(&c->sta_history, false);
    *s = link_sample{};
    s->txrate = l.txrate;
    s->rxrate = l.rxrate;
    s->rate = std::max(l.txrate, l.rxrate);
    s->rssi = l.rssi;
}

void sample_wds_station(ap_iface* ap, const char* name, const wlan_link_info& l) {
    uint32_t port = wlan_get_wdsport_by_stamac(name, l.mac);
    for (lynd_list* n = ap->clients.next; n != &ap->clients; n = n->next) {
        hc_client* c = static_cast<hc_client*>(lynd_container_of(n, offsetof(hc_client, ap_node)));
        if (c->hc.src_port != port)
            continue;
        const uint8_t* m = c->hc.mac;
        const uint8_t* w = l.mac;
        LYND_LOG_AS(kFn, "find client[%s] for wdsmac[%s]", lynd_mac(m).s, lynd_mac(w).s);
        station_sample(c, l);
    }
}

hc_client* find_anywhere(hc_path* paths, const uint8_t* mac) {
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++)
        if (paths[t].state != PATH_UNINITED)
            if (hc_client* c = hc_find_client(&paths[t].clients, mac))
                return c;
    return nullptr;
}

void sample_station(hc_path* paths, uint32_t path_type, const ap_iface& ap, const wlan_link_info& l) {
    hc_client* c = find_anywhere(paths, l.mac);
    if (c == nullptr)
        return;
    const uint8_t* m = c->hc.mac;
    if (c->sta_type != path_type)
        LYND_WARN_AS(kFn, "client[%s] mybe move, path_type[%d]->[%d]", lynd_mac(m).s, c->sta_type,
                     static_cast<int>(path_type));
    if (c->hc.src_port != ap.ifindex)
        LYND_WARN_AS(kFn, "client[%s] mybe move, src_port[%d]->[%d]", lynd_mac(m).s, static_cast<int>(c->hc.src_port),
                     static_cast<int>(ap.ifindex));
    station_sample(c, l);
}

void refresh_counters(hc_path* p, const char* name) {
    if (const debug_path_info* d = override_for(p->type, name)) {
        p->last_txbytes = p->cur_txbytes;
        p->last_rxbytes = p->cur_rxbytes;
        p->cur_txbytes += static_cast<uint64_t>(d->txbytes) * 1000;
        p->cur_rxbytes += static_cast<uint64_t>(d->rxbytes) * 1000;
        return;
    }
    wlan_link_counters counters{p->cur_txbytes, p->cur_rxbytes};
    bool read = wlan_get_link_counters(name, &counters) == 1;
    p->last_txbytes = p->cur_txbytes;
    p->last_rxbytes = p->cur_rxbytes;
    // Unread counters show no traffic, so a peer that is gone ends ABNORMAL.
    if (!read)
        return;
    p->cur_txbytes = counters.tx_bytes;
    p->cur_rxbytes = counters.rx_bytes;
}

}  // namespace

void path_selection_sampling_name(const char* name, char* out) {
    if (g_ps_conf != nullptr && g_ps_conf->ts.enable) {
        (void)lynd_get_home_name(out, name);
        return;
    }
    std::memset(out, 0, LYND_NAME_LEN);
    std::memcpy(out, name, strnlen(name, LYND_NAME_LEN - 1));
}

void path_selection_sample_wlan_path_info(hc_path* path) {
    LYND_DEBUG("sample backhaul wlan info");
    if (!path_is_live(*path))
        return;
    LYND_DEBUG("iface[%s], type[%d]", path->name, path->type);
    if (!is_wireless(path->type))
        return;
    char name[LYND_NAME_LEN];
    path_selection_sampling_name(path->name, name);
    wlan_link_info l{};
    if (wlan_get_links_v2(name, &l) != 1) {
        LYND_WARN("path: %s maybe disconnected", name);
        return;
    }
    link_sample* s = ring_append(&path->path_history, true);
    if (const debug_path_info* d = override_for(path->type, name)) {
        *s = link_sample{d->txrate, d->rxrate, std::max(d->txrate, d->rxrate),
                         d->rssi,   d->noise,  static_cast<int16_t>(d->rssi - d->noise)};
        return;
    }
    *s = link_sample{l.txrate,
                     l.rxrate,
                     std::max(l.txrate, l.rxrate),
                     l.rssi,
                     static_cast<int16_t>(l.noise),
                     static_cast<int16_t>(l.snr)};
}

void path_selection_sample_wlan_sta_info(hc_path* paths, uint32_t path_type) {
    LYND_DEBUG("sample DUT AP STAs wlan info");
    wlan_link_info links[kMaxStaLinks];
    for (auto& ap : paths[path_type].ap_ifaces) {
        if (ap.name[0] == '\0')
            continue;
        char name[LYND_NAME_LEN];
        path_selection_sampling_name(ap.name, name);
        LYND_DEBUG("ap_iface name:%s", name);
        int n = wlan_get_sta_links(name, links, kMaxStaLinks);
        if (n <= 0)
            continue;
        LYND_DEBUG("%s: link_num=%d", name, n);
        for (int j = 0; j < n; j++) {
            if (ap.wds == 1)
                sample_wds_station(&ap, name, links[j]);
            else
                sample_station(paths, path_type, ap, links[j]);
        }
    }
}

void path_selection_update_hc_paths(conf_bridge*, hc_path* paths) {
    for (uint32_t t = IF_TYPE_2G; t < IF_TYPE_MAX; t++) {
        hc_path* p = &paths[t];
        if (p->state == PATH_UNINITED)
            continue;
        LYND_DEBUG("hc_paths[path_type].path.name:%s", p->name);
        char name[LYND_NAME_LEN];
        path_selection_sampling_name(p->name, name);
        uint16_t rate = 0, tx = 0, rx = 0;
        uint8_t util = 0;
        if (wlan_get_uplink_rate_v2(name, &rate, &tx, &rx) != 1 || !wlan_get_channel_utilization(name, &util, t)) {
            LYND_WARN("path: %s maybe disconnected", p->name);
            // Rate and utilisation stay; no traffic is seen, so a lost peer ends ABNORMAL.
            p->last_txbytes = p->cur_txbytes;
            p->last_rxbytes = p->cur_rxbytes;
            continue;
        }
        p->util = util;
        p->rate = rate;
        refresh_counters(p, name);
    }
}

uint32_t path_selection_get_wl_sta_info_rate(const hc_client* c) {
    if (c->sta_type == IF_TYPE_ETH)
        return kWiredRate;
    if (!is_wireless(c->sta_type) || c->sta_history.num == 0)
        return 0;
    uint16_t rates[HC_RING_SIZE] = {};
    const sample_ring& r = c->sta_history;
    for (int i = 0; i < r.num; i++)
        rates[i] = r.samples[(r.start + i) % HC_RING_SIZE].rate;
    uint8_t queue_len = lynd_sort_array(rates, HC_RING_SIZE);
    LYND_LOG("queue_len:%d, rate order: %d, %d, %d, %d, %d, %d, %d, %d...", queue_len, rates[0], rates[1], rates[2],
             rates[3], rates[4], rates[5], rates[6], rates[7]);
    return queue_len > 0 ? rates[queue_len / 3] : 0;
}

int wlan_get_uplink_rate_v2(const char* ifname, uint16_t* rate, uint16_t* txrate, uint16_t* rxrate) {
    wlan_rate r{};
    int8_t rssi = 0;
    if (!wlan_get_uplink_rate(ifname, &r, &rssi))
        return 0;
    *rate = std::max(r.tx, r.rx);
    *txrate = r.tx;
    *rxrate = r.rx;
    return 1;
}

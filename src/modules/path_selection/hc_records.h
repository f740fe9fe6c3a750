// STAND-IN until the path records land: the path slots and client records.
#pragma once
#include <cstdint>

#include "bridge/table_entries.h"
#include "core/list.h"
#include "core/event_records.h"
#include "core/types.h"

constexpr int HC_MAX_CLIENTS = 256;
constexpr int HC_RING_SIZE = 20;
constexpr int HC_AP_IFACES = 10;
constexpr uint8_t PATH_NONE = 5;

enum path_state : uint8_t {
    PATH_UNINITED = 0,
    PATH_UNLINK = 1,
    PATH_NORMAL = 2,
    PATH_WEAKLINK = 3,
    PATH_WEAKLINK_ABNORMAL = 4,
    PATH_ABNORMAL = 5,
};
extern const char* const path_state_names[7];

struct link_sample {
    uint16_t txrate, rxrate, rate;
    int16_t rssi, noise, snr;
};
struct sample_ring {
    link_sample samples[HC_RING_SIZE];
    uint8_t num;
    uint8_t start;
};
struct ap_iface {
    char name[LYND_NAME_LEN];
    uint32_t ifindex;
    uint8_t type;
    uint8_t wds;
    lynd_list clients;
};
struct hc_path {
    char name[LYND_NAME_LEN];
    uint8_t type;
    uint8_t priority;
    uint8_t util;
    uint8_t reserved_ratio;
    uint16_t rate;
    int16_t quota;
    uint64_t last_txbytes, last_rxbytes, cur_txbytes, cur_rxbytes;
    uint8_t overload;
    uint8_t path;
    uint8_t state;
    uint8_t last_state;
    uint8_t weak_count;
    uint8_t abnormal_count;
    sample_ring path_history;
    lynd_list clients;
    ap_iface ap_ifaces[HC_AP_IFACES];
};
constexpr uint8_t HC_FLAG_ASSOC_NEWLY = 1;
struct hc_client {
    lynd_list path_node;
    lynd_list ap_node;
    hc_entry hc;
    uint8_t busy_count;
    uint8_t idle_count;
    uint8_t magic;
    uint8_t best_path;
    uint8_t sta_type;
    uint8_t flags;
    sample_ring sta_history;
};
extern hc_path hc_paths[IF_TYPE_MAX];
extern hc_client hc_entrys[HC_MAX_CLIENTS];
extern uint8_t g_hc_magic;
struct lynd_config;
struct conf_bridge;
extern lynd_config* g_ps_conf;
extern int64_t g_timer_interval;

hc_client* hc_client_of_path_node(lynd_list* l);
hc_client* hc_pool_alloc();
hc_client* hc_find_client(lynd_list* head, const uint8_t* mac);
void hc_client_unlink_path(hc_client* c);
void hc_client_unlink_ap(hc_client* c);
void hc_list_dump(const lynd_list* head, const char* func, int line);
void hc_mark_generation(lynd_list* head, uint8_t magic);
void hc_sweep_generation(lynd_list* head, uint8_t magic);
ap_iface* path_selection_find_ap_iface_by_hc(hc_client* c);
void path_selection_link_up(hc_path* p);
void path_selection_link_down(hc_path* p);
bool path_is_live(const hc_path& p);
void path_selection_init_path_quota_v2(conf_bridge* bridge, hc_path* paths);
int path_selection_check_path_overload_v2(conf_bridge* bridge, hc_path* paths, int* has_clients_on_busy_path);
hc_path* path_selection_find_best_path_v2(hc_path* paths);
void path_selection_update_hc_paths(conf_bridge* bridge, hc_path* paths);
void path_selection_evaluate_path_state(conf_bridge* bridge, hc_path* paths);
void path_selection_pre_update_weak_abnormal_path(conf_bridge* bridge, hc_path* paths);
void path_selection_apply_link_state(hc_path* p, bool up);
extern uint8_t g_dbg_overload_mask;
extern debug_path_info g_dbg_path_info[IF_TYPE_MAX];

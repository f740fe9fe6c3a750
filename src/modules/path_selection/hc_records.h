// The HC algorithm's records: one slot per backhaul path type, and the
// client records, drawn from a fixed pool, that mirror the bridge's hc table.
#pragma once
#include <cstdint>

#include "bridge/table_entries.h"
#include "core/event_records.h"
#include "core/list.h"
#include "core/types.h"

struct lynd_config;
struct conf_bridge;

constexpr int HC_MAX_CLIENTS = 256;
constexpr int HC_RING_SIZE = 20;
constexpr int HC_AP_IFACES = 10;
constexpr uint8_t PATH_NONE = 5;  // no path type, or no path chosen

enum path_state : uint8_t {
    PATH_UNINITED = 0,
    PATH_UNLINK = 1,
    PATH_NORMAL = 2,
    PATH_WEAKLINK = 3,
    PATH_WEAKLINK_ABNORMAL = 4,
    PATH_ABNORMAL = 5,
};
// By state; the seventh, empty, is printed when no path is live.
extern const char* const path_state_names[7];

struct link_sample {
    uint16_t txrate;
    uint16_t rxrate;
    uint16_t rate;
    int16_t rssi;
    int16_t noise;
    int16_t snr;
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
    lynd_list clients;  // by ap_node
};

struct hc_path {
    char name[LYND_NAME_LEN];
    uint8_t type;
    uint8_t priority;
    uint8_t util;
    uint8_t reserved_ratio;
    uint16_t rate;
    int16_t quota;
    uint64_t last_txbytes;
    uint64_t last_rxbytes;
    uint64_t cur_txbytes;
    uint64_t cur_rxbytes;
    uint8_t overload;
    uint8_t path;
    uint32_t linkquality_smoothing_factor;
    uint32_t abnormal_threshold_txrate;
    uint32_t abnormal_threshold_rxrate;
    int32_t weaklink_threshold_rssi;
    int32_t weaklink_threshold_snr;
    int32_t weaklink_threshold_rate;
    int32_t weaklink_hold_threshold_rssi;
    int32_t weaklink_hold_threshold_snr;
    uint8_t state;
    uint8_t last_state;
    uint8_t weak_count;
    uint8_t abnormal_count;
    sample_ring path_history;
    lynd_list clients;  // by path_node
    ap_iface ap_ifaces[HC_AP_IFACES];
};

constexpr uint8_t HC_FLAG_ASSOC_NEWLY = 1;

struct hc_client {
    lynd_list path_node;  // both null: the record is free
    lynd_list ap_node;    // both null: on no AP list
    hc_entry hc;
    uint8_t busy_count;
    uint8_t idle_count;
    uint8_t magic;
    uint8_t best_path;
    uint8_t sta_type;
    uint8_t flags;
    sample_ring sta_history;
};

// The algorithm's process-wide state.
extern hc_path hc_paths[IF_TYPE_MAX];
extern hc_client hc_entrys[HC_MAX_CLIENTS];
extern uint8_t g_hc_magic;
extern lynd_config* g_ps_conf;    // kept at init for the algorithm's steps
extern int64_t g_timer_interval;  // ms between the starts of the last two period runs
extern uint8_t g_dbg_overload_mask;
extern debug_path_info g_dbg_path_info[IF_TYPE_MAX];
extern uint32_t g_hc_rand_state;  // the run magic's generator

// Everything path selection keeps from run to run (paths, client pool and
// lists, the magic and its generator, explain and insight records, the
// client log with the flap guard's marks, the preferred port's leaves) as a
// new process has it: the one reset, so a restart carries nothing over.
// The per-run scratch (the sync's index, the period's port lists) is
// rebuilt by every run and needs none.
void path_selection_state_reset();

inline bool path_is_live(const hc_path& p) { return p.state > PATH_UNLINK; }

hc_client* hc_client_of_path_node(lynd_list* l);
// The first free record, or null when all are in use.
// A free record, or null (counted) when all are taken.
hc_client* hc_pool_alloc();
// Records taken.
int hc_pool_used();
void hc_pool_clear();
// The first record of a path list with that client MAC; null for a null
// list or key.
hc_client* hc_find_client(lynd_list* head, const uint8_t* mac);
void hc_client_unlink_path(hc_client* c);
void hc_client_unlink_ap(hc_client* c);
void hc_mark_generation(lynd_list* head, uint8_t magic);
// Records of another generation leave both lists and return to the pool.
void hc_sweep_generation(lynd_list* head, uint8_t magic);
// At the most verbose level only.
void hc_list_dump(const lynd_list* head, const char* func, int line);

void ring_clear(sample_ring* r);
// The slot the next sample goes to (the ring advances); logs its index.
link_sample* ring_append(sample_ring* r, bool path_ring);

void path_selection_hc_path_init(lynd_config* conf);
ap_iface* path_selection_find_ap_iface_by_hc(hc_client* c);
// An active bridge with path selection, and with the HC algorithm when hc.
bool path_selection_bridge(const conf_bridge& br, bool hc);

// A link seen up starts a fresh NORMAL path; one seen down goes UNLINK.
void path_selection_apply_link_state(hc_path* p, bool up);

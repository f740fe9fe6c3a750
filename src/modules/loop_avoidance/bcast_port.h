// Which ports of a loop-avoidance bridge may forward broadcasts: relay
// ports always, and per VLAN and class one non-relay port, the best linked
// uplink. The primary one is published in the broadcast file.
#pragma once
#include <cstdint>

#include "config/lynd_config.h"

constexpr const char* BCAST_PORT_FILE = "/tmp/hybr_broadcast_port";

// One VLAN's broadcast ports as last picked, per class ("" for none).
struct bcast_pick_kept {
    uint32_t vid;
    char port[2][LYND_NAME_LEN];
};

// The name last written to the broadcast file, and the last picks, per
// configured bridge.
struct loop_avoidance_state {
    char last_bcast_port[LYND_MAX_BRIDGES][LYND_NAME_LEN];
    bcast_pick_kept picks[LYND_MAX_BRIDGES][TS_MAX_VLANS];
    uint8_t n_picks[LYND_MAX_BRIDGES];
    // The broadcast file's text while a write of it has yet to succeed.
    char bcast_file_text[LYND_NAME_LEN + 1];
    uint8_t bcast_file_len;
    bool bcast_file_pending;
};
extern loop_avoidance_state g_loop_avoidance;
void loop_avoidance_state_reset();

// -10 link down (Ethernet always), 0 up but abnormal, +10 up.
int32_t lynd_get_link_prio(uint32_t type);
conf_interface* loop_avoidance_pick_bcast_nonrelay_port(conf_interface* const* ports, int count, uint8_t if_class,
                                                        lynd_config* conf, uint32_t vlan);
void loop_avoidance_set_bcast_port(lynd_config* conf);
void loop_avoidance_set_bcast_port_by_ps(lynd_config* conf, conf_bridge* bridge, const char* port_name);

// The broadcast ports picked for one run: per class, per VLAN index.
struct bcast_picks {
    conf_interface* port[2][TS_MAX_VLANS];
    int n_vlans;
};
bool loop_avoidance_picked(const bcast_picks& pk, const conf_interface* p);

// The VLANs loop avoidance works over: the separated ones, else VLAN 0.
int loop_avoidance_vlans(const lynd_config* conf, const uint32_t** vids);
// Writes name and a newline to the broadcast file and remembers it for
// bridge index i, as a decision taken for reason.
void loop_avoidance_publish_bcast_port(lynd_config* conf, int i, const char* name, const char* reason);
// Writes the broadcast file's pending text, if any: false when it is still
// pending (a retry is then armed).
bool loop_avoidance_write_bcast_file(lynd_config* conf);
// Remembers the picks of bridge index i for an operator's question.
void loop_avoidance_keep_picks(lynd_config* conf, int i, const bcast_picks& pk);

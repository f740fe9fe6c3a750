// The daemon's single context record.
#pragma once
#include <cstdint>

#include "config/conf_param.h"
#include "config/conf_ts.h"
#include "core/event_records.h"
#include "core/list.h"
#include "core/types.h"

constexpr int LYND_MAX_BRIDGES = 8;
constexpr int LYND_MAX_INTERFACES = 128;
constexpr int LYND_RECORD_PATH_LEN = 128;

constexpr uint32_t BR_FLAG_LOOP_AVOIDANCE = 1u << 0;
constexpr uint32_t BR_FLAG_PATH_SELECTION = 1u << 1;
constexpr uint32_t BR_FLAG_DUMP = 1u << 2;  // run-time only

constexpr uint32_t PS_FLAG_HC = 1u << 0;
constexpr uint32_t PS_FLAG_FOLLOW_RE = 1u << 1;
constexpr uint32_t PS_FLAG_TCP_SP = 1u << 2;

struct conf_bridge {
    char name[LYND_NAME_LEN];  // first: the record stands for its name
    uint32_t flags;
    uint32_t ps_flags;
    uint32_t preferred_ifindex;
    uint8_t bcast_type;
    uint8_t best_state;
};

struct conf_interface {
    char name[LYND_NAME_LEN];
    uint32_t type;  // if_type
    uint8_t compat_group;
    uint8_t priority;
    bool relay;
    bool path;
    uint8_t if_class;
    uint32_t eth_index;
    uint32_t ts_vlan_id;
    bool ts_vap;
    bool is_ts_vlan;
    bool support_ts_vlan;
    bool switch_vlan_interface;
    char primary_name[LYND_NAME_LEN];
};

struct lynd_config {
    bool enable;
    bool shadow;  // decide and tell, steer nothing
    bool syslog;         // log lines go to syslog instead of the console
    bool log_decisions;  // a log line per decision, at the default level
    char record[LYND_RECORD_PATH_LEN];  // the trace's file name, empty for none
    uint32_t record_size;               // bytes of each of its two files
    uint64_t n_bridges;
    conf_bridge bridges[LYND_MAX_BRIDGES];
    uint64_t n_interfaces;
    conf_interface interfaces[LYND_MAX_INTERFACES];
    conf_param param;
    uint32_t pathsel_mode;
    uint32_t brconf_mode;
    conf_ts ts;
    conf_client_rules clients;  // pinned and excluded clients
    event_hub ev;
    lynd_list modules;
};

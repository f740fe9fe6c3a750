// Host-side measurements: CPU load, interface counters and the link checks
// this platform has no source for.
#pragma once
#include <cstddef>
#include <cstdint>

#include "config/lynd_config.h"

// The first line of /proc/stat, in file order.
struct cpu_sample {
    uint32_t user, nice, system, idle, iowait, irq, softirq;
};

// Two slots and a toggle: each call writes one slot, the other holds the
// previous sample.
struct cpu_sampler {
    cpu_sample a;
    cpu_sample b;
    uint8_t toggle;
};
extern cpu_sampler g_cpu_sampler;
void lynd_cpu_sampler_reset();

struct if_stat {
    uint32_t time;
    uint64_t rx_bytes;
    uint64_t rx_packets;
    uint64_t tx_bytes;
    uint64_t tx_packets;
};

// Pure: the counters of /proc/stat's first line; false when it does not scan.
bool lynd_parse_proc_stat(const char* text, size_t len, cpu_sample* out);
// Pure: busy share in percent between two samples; 0 when nothing moved.
uint32_t lynd_cpu_percent(const cpu_sample& old_s, const cpu_sample& new_s);

uint32_t lynd_calculate_cpu_occupy();
int lynd_check_cpu_overload(const lynd_config* conf);

// Pure: the counters of ifname in /proc/net/dev text; the first line that
// holds "ifname:" wins, even as the tail of a longer name.
bool lynd_parse_net_dev(const char* text, size_t len, const char* ifname, if_stat* out);
int lynd_get_if_stat(const char* ifname, if_stat* stat_out);

// No source for these on this platform: each answers 0.
int lynd_check_abnormal_link(uint32_t type);
int lynd_check_eth_has_neigh(const lynd_config* conf, const char* name);
int update_eth_traffic_ports(lynd_config* conf, int count, conf_interface* const* ports);
int eth_traffic_is_active();

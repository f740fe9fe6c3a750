#include <cstdio>
#include <cstring>

#include "node/host_stats.h"
#include "core/log.h"
#include "platform/seams.h"

cpu_sampler g_cpu_sampler = {{}, {}, 1};

void lynd_cpu_sampler_reset() { g_cpu_sampler = cpu_sampler{{}, {}, 1}; }

bool lynd_parse_proc_stat(const char* text, size_t len, cpu_sample* out) {
    char line[1025] = {};
    size_t n = len < sizeof line - 1 ? len : sizeof line - 1;
    if (n > 0)
        std::memcpy(line, text, n);
    if (char* nl = std::strchr(line, '\n'))
        *nl = '\0';
    char label[16];
    cpu_sample s{};
    if (std::sscanf(line, "%15s %u %u %u %u %u %u %u", label, &s.user, &s.nice, &s.system, &s.idle, &s.iowait,
                    &s.irq, &s.softirq) != 8)
        return false;
    *out = s;
    return true;
}

uint32_t lynd_cpu_percent(const cpu_sample& old_s, const cpu_sample& new_s) {
    if (std::memcmp(&old_s, &new_s, sizeof old_s) == 0)
        return 0;
    uint32_t busy_old = old_s.user + old_s.nice + old_s.system + old_s.irq + old_s.softirq;
    uint32_t busy_new = new_s.user + new_s.nice + new_s.system + new_s.irq + new_s.softirq;
    uint32_t total_old = busy_old + old_s.idle + old_s.iowait;
    uint32_t total_new = busy_new + new_s.idle + new_s.iowait;
    if (total_new == total_old)
        return 0;
    return (busy_new - busy_old) * 100u / (total_new - total_old);
}

uint32_t lynd_calculate_cpu_occupy() {
    cpu_sampler& s = g_cpu_sampler;
    cpu_sample& fresh = s.toggle == 1 ? s.a : s.b;
    const cpu_sample& previous = s.toggle == 1 ? s.b : s.a;
    fresh = cpu_sample{};
    char text[1024];
    long n = lynd::host().read_file("/proc/stat", text, sizeof text);
    if (n > 0)
        (void)lynd_parse_proc_stat(text, static_cast<size_t>(n), &fresh);
    uint32_t cpu = lynd_cpu_percent(previous, fresh);
    s.toggle = s.toggle == 1 ? 0 : 1;
    LYND_LOG("cpu =================> %u", cpu);
    return cpu;
}

int lynd_check_cpu_overload(const lynd_config* conf) {
    uint8_t threshold = conf->param.cpu_threshold;
    return threshold != 0 && lynd_calculate_cpu_occupy() > threshold ? 1 : 0;
}

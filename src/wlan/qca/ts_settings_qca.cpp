#include "wlan/qca/ts_settings_qca.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "config/conf_ts.h"
#include "core/queries.h"
#include "core/types.h"

namespace {

constexpr size_t kKeyLen = 64;
constexpr size_t kValueLen = 64;
static_assert(kValueLen == TS_SSID_LEN, "an SSID value fills a policy's field");

// Reads the option named by fmt into a zeroed value; a key that does not fit
// its buffer is not read.
bool read_option(char* value, size_t size, const char* fmt, ...) __attribute__((format(printf, 3, 4)));
bool read_option(char* value, size_t size, const char* fmt, ...) {
    char key[kKeyLen];
    va_list ap;
    va_start(ap, fmt);
    int n = std::vsnprintf(key, sizeof key, fmt, ap);
    va_end(ap);
    if (n < 0 || static_cast<size_t>(n) >= sizeof key)
        return false;
    std::memset(value, 0, size);
    return lynd_uci_get_value(key, value, size);
}

// As C's atoi reads it: leading blanks, a sign, the digits up to the first
// other character; no digits give 0. Out of int range it saturates.
uint32_t c_number(const char* text) {
    const char* p = text;
    while (*p == ' ' || (*p >= '\t' && *p <= '\r'))
        p++;
    bool negative = *p == '-';
    if (*p == '-' || *p == '+')
        p++;
    int64_t v = 0;
    for (; *p >= '0' && *p <= '9'; p++) {
        v = v * 10 + (*p - '0');
        if (v > INT32_MAX)
            break;
    }
    if (negative)
        v = v > INT32_MAX ? INT32_MIN : -v;
    else if (v > INT32_MAX)
        v = INT32_MAX;
    return static_cast<uint32_t>(static_cast<int32_t>(v));
}

uint32_t read_number(const char* fmt, uint32_t i) {
    char value[kValueLen];
    return read_option(value, sizeof value, fmt, i) ? c_number(value) : 0;
}

uint32_t read_number(const char* key) {
    char value[kValueLen];
    return read_option(value, sizeof value, "%s", key) ? c_number(value) : 0;
}

}  // namespace

int wlan_get_ts_enable(uint32_t work_mode) {
    char value[kValueLen];
    int enable = 1;
    if (work_mode == WORK_MODE_RE && read_option(value, sizeof value, "%s", "wificommonCfg.settings.mesh_enable"))
        enable = std::strcmp(value, "on") == 0;
    if (enable && read_option(value, sizeof value, "%s", "traffic_separation.traffic_separation.enable"))
        enable = std::strcmp(value, "on") == 0;
    return enable;
}

uint32_t wlan_get_ts_primary_vid() { return read_number("traffic_separation.traffic_separation.primary_vlan"); }

uint32_t wlan_get_ts_policy_count() { return read_number("traffic_separation.traffic_separation.ts_policy_count"); }

uint32_t wlan_get_ts_vid_by_index(uint32_t i) { return read_number("traffic_separation.@ts_policy[%u].vlan_id", i); }

int wlan_get_ts_policy_ssid_by_index(char* out, size_t out_len, uint32_t i) {
    if (out == nullptr || out_len == 0)
        return 0;
    return read_option(out, out_len, "traffic_separation.@ts_policy[%u].ssid", i) ? 1 : 0;
}

int wlan_get_ts_policy_is_pri_by_index(uint32_t i) {
    return read_number("traffic_separation.@ts_policy[%u].is_primary", i) != 0 ? 1 : 0;
}

int wlan_get_ssid_by_ifname(const char* ifname, char* out) {
    char value[kValueLen];
    if (ifname == nullptr || out == nullptr || !read_option(value, sizeof value, "wireless.%s.ssid", ifname) ||
        value[0] == '\0')
        return 0;
    std::memcpy(out, value, TS_SSID_LEN);
    return 1;
}

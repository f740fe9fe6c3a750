#include "node/mesh_reply.h"

#include <cstdio>
#include <cstring>

#include "core/mac.h"

namespace {

constexpr size_t kMacTextMax = 23;

// The reply as a terminated string, cut to LYND_MESH_REPLY_MAX bytes.
struct reply_text {
    char s[LYND_MESH_REPLY_MAX + 1];
    reply_text(const char* reply, size_t len) {
        size_t n = len < LYND_MESH_REPLY_MAX ? len : LYND_MESH_REPLY_MAX;
        if (n > 0)
            std::memcpy(s, reply, n);
        s[n] = '\0';
    }
};

// The character at offset from p, or 0 when the string ends before it.
char char_at(const char* p, size_t offset) {
    for (size_t i = 0; i < offset; i++)
        if (p[i] == '\0')
            return '\0';
    return p[offset];
}

// True when the text at p is an integer (sign, digits) whose value is 0;
// the value itself is never converted, so no size can overflow.
bool is_integer_zero(const char* p) {
    if (*p == '+' || *p == '-')
        p++;
    if (*p < '0' || *p > '9')
        return false;
    while (*p == '0')
        p++;
    return *p < '1' || *p > '9';
}

}  // namespace

bool lynd_parse_findcontroller_reply(const char* reply, size_t len, uint8_t* mac_out) {
    reply_text text(reply, len);
    const char* ret = std::strstr(text.s, "\"ret\":");
    if (ret == nullptr || char_at(ret, 7) != '0')  // after "ret": and one blank
        return false;
    const char* key = std::strstr(ret, "\"mac\":");
    if (key == nullptr)
        return false;
    char mac_text[kMacTextMax + 1] = {};
    if (char_at(key, 7) != '\0') {  // the value starts after "mac":, a blank and a quote
        const char* value = key + 8;
        size_t n = 0;
        while (n < kMacTextMax && value[n] != '\0' && value[n] != '"')
            n++;
        std::memcpy(mac_text, value, n);
    }
    (void)lynd_parse_mac_text(mac_text, ':', mac_out);
    return true;
}

bh_eth_reply lynd_parse_bh_eth_reply(const char* reply, size_t len, char* name_out) {
    reply_text text(reply, len);
    int at = -1;
    (void)std::sscanf(text.s, "%*s \"success\": %n", &at);
    if (at < 0 || !is_integer_zero(text.s + at))
        return bh_eth_reply::FAILED;
    char name[LYND_BH_ETH_NAME_LEN] = {};
    if (std::sscanf(text.s, "%*s %*s %*s \"eth_bh_if\": \"%32[^\"]\"", name) != 1)
        return bh_eth_reply::NO_NAME;
    std::memcpy(name_out, name, sizeof name);
    return bh_eth_reply::NAME;
}

#include "core/vlan_name.h"

#include <cctype>
#include <cstdio>
#include <cstring>

#include "core/types.h"

int lynd_get_vlan_name(char* out, const char* base, uint32_t vid, bool dotted) {
    char work[32];
    if (vid == 0)
        std::snprintf(work, sizeof work, "%s", base);
    else
        std::snprintf(work, sizeof work, dotted ? "%s.%u" : "%s%u", base, vid);
    size_t len = std::strlen(work);
    std::memset(out, 0, LYND_NAME_LEN);
    std::memcpy(out, work, len < LYND_NAME_LEN - 1 ? len : LYND_NAME_LEN - 1);
    return 1;
}

int lynd_get_home_name(char* out, const char* name) {
    std::memset(out, 0, LYND_NAME_LEN);
    const char* dot = std::strrchr(name, '.');
    size_t len = std::strlen(name);
    if (dot != nullptr && dot - name <= LYND_NAME_LEN)
        len = static_cast<size_t>(dot - name);
    std::memcpy(out, name, len < LYND_NAME_LEN - 1 ? len : LYND_NAME_LEN - 1);
    return 1;
}

uint32_t lynd_get_vlan_id(const char* name) {
    size_t len = std::strlen(name);
    size_t i = len;
    while (i > 0 && std::isdigit(static_cast<unsigned char>(name[i - 1])))
        i--;
    if (i == 0 || name[i - 1] != '.' || i == len)
        return 0;
    uint32_t vid = 0;
    for (size_t k = i; k < len && vid <= 4095; k++)  // stops growing once out of range
        vid = vid * 10 + static_cast<uint32_t>(name[k] - '0');
    return vid >= 1 && vid <= 4095 ? vid : 0;
}

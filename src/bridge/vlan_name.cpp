#include "bridge/vlan_name.h"

#include <cstdio>
#include <cstring>

#include "config/lynd_config.h"

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

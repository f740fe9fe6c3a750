#include "core/log.h"
#include "platform/seams.h"
#include "wlan/wlan.h"

#include <cctype>
#include <cstring>


const char* const link_ifname[IF_TYPE_MAX] = {nullptr, "ath02", "ath12", "", "ath22"};

namespace {

constexpr uint32_t kNoSubunit = UINT32_MAX;

// The type of the station name that name matches over its first n
// characters, or IF_TYPE_MAX.
uint32_t station_type(const char* name, size_t n) {
    for (uint32_t type = IF_TYPE_2G; type < IF_TYPE_MAX; type++) {
        const char* sta = link_ifname[type];
        if (sta[0] != '\0' && std::strncmp(name, sta, n) == 0)
            return type;
    }
    return IF_TYPE_MAX;
}

uint32_t _ifname2type(const char* name) {
    uint32_t type = IF_TYPE_MAX;
    if (std::strncmp(name, "ath", 3) == 0) {
        type = station_type(name, 4);  // the fourth character is the radio
        if (type == IF_TYPE_MAX)
            LYND_ERR("not get src iface[%s] type", name);
    } else if (std::strncmp(name, "eth", 3) == 0) {
        type = IF_TYPE_ETH;
    } else {
        LYND_WARN("not get src iface[%s] type", name);
    }
    LYND_DEBUG("src iface[%s] type is %d", name, static_cast<int>(type));
    return type;
}

uint32_t _get_ifname_subunit(const char* name) {
    size_t len = std::strlen(name);
    if (station_type(name, len >= 6 ? 5 : 4) == IF_TYPE_MAX)
        return kNoSubunit;
    if (len == 4)
        return 0;
    char last = name[len - 1];
    return std::isdigit(static_cast<unsigned char>(last)) ? static_cast<uint32_t>(last - '0') : kNoSubunit;
}

}  // namespace

uint32_t wlan_get_type_by_ifname(const char* name) {
    if (name == nullptr) {
        LYND_ERR("Arg");
        return IF_TYPE_MAX;
    }
    return _ifname2type(name);
}

uint32_t wlan_get_type_by_ifindex(uint32_t ifindex) {
    char name[lynd::IFNAME_LEN] = {};
    if (!lynd::host().if_indextoname(ifindex, name)) {
        LYND_ERR("not get interface name");
        return IF_TYPE_MAX;
    }
    name[sizeof name - 1] = '\0';
    return _ifname2type(name);
}

uint32_t wlan_get_subunit_by_ifname(const char* name) {
    if (name == nullptr) {
        LYND_ERR("Arg");
        return kNoSubunit;
    }
    uint32_t subunit = _get_ifname_subunit(name);
    // The lines belong to the name rule, which stays free of logging.
    if (subunit == kNoSubunit)
        LYND_DEBUG_AS("_get_ifname_subunit", "fail to get ifname(%s) subunit", name);
    else
        LYND_DEBUG_AS("_get_ifname_subunit", "ifname(%s) subunit is %d", name, static_cast<int>(subunit));
    return subunit;
}

uint32_t wlan_get_wdsport_by_stamac(const char* ifname, const uint8_t*) {
    return ifname != nullptr ? lynd::host().if_nametoindex(ifname) : 0;
}

int wlan_check_wds_by_ifname(const char* ifname) {
    LYND_WARN("Cannot check wds by ifname(%s), because QCA does not have wds", ifname != nullptr ? ifname : "");
    return 0;
}

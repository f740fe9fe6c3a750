// Interface names from the configuration, UCI and the kernel: their type,
// sub-unit, VLAN id, home and VLAN names.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "core/types.h"
#include "core/vlan_name.h"
#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_seams.h"
#include "wlan/wlan.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    std::string name(reinterpret_cast<const char*>(data), size);
    name = name.substr(0, name.find('\0'));
    fuzz_check(wlan_get_type_by_ifname(name.c_str()) <= IF_TYPE_MAX, "type");
    uint32_t sub = wlan_get_subunit_by_ifname(name.c_str());
    fuzz_check(sub <= 9 || sub == UINT32_MAX, "sub-unit");
    uint32_t vid = lynd_get_vlan_id(name.c_str());
    fuzz_check(vid <= 4095, "vlan id");
    char out[LYND_NAME_LEN + 8];
    std::memset(out, 'x', sizeof out);
    (void)lynd_get_home_name(out, name.c_str());
    fuzz_check(std::memchr(out, '\0', LYND_NAME_LEN) != nullptr, "home name terminated");
    fuzz_check(out[LYND_NAME_LEN] == 'x', "home name stays in its field");
    std::memset(out, 'x', sizeof out);
    (void)lynd_get_vlan_name(out, name.c_str(), vid != 0 ? vid : 4095, true);
    fuzz_check(std::memchr(out, '\0', LYND_NAME_LEN) != nullptr, "vlan name terminated");
    fuzz_check(out[LYND_NAME_LEN] == 'x', "vlan name stays in its field");
    return 0;
}

#include <string>

#include "core/types.h"
#include "sim_fixture.h"
#include "wlan/qca/ts_settings_qca.h"

namespace {

using TsSettingsTest = SimNodeTest;

TEST_F(TsSettingsTest, SwitchesCountOnlyWhenReadAndTheMeshOneOnlyOffTheController) {
    EXPECT_EQ(1, wlan_get_ts_enable(WORK_MODE_RE));
    uci.set("wificommonCfg.settings.mesh_enable", "off");
    EXPECT_EQ(0, wlan_get_ts_enable(WORK_MODE_RE));
    uci.set("traffic_separation.traffic_separation.enable", "ON");
    EXPECT_EQ(0, wlan_get_ts_enable(WORK_MODE_FAP));
}

// Numbers read as a C daemon reads them from text (atoi), so a stray blank
// does not switch traffic separation off.
TEST_F(TsSettingsTest, ValuesReadAsCNumbersAndKeysMustFit) {
    const std::pair<const char*, uint32_t> cases[] = {
        {"0020", 20},       {"20x", 20},        {" 20", 20}, {"10 ", 10},          {"\t+7", 7},
        {"-5", 4294967291u}, {"", 0},            {"x20", 0},  {"- 5", 0},           {"2147483647", 2147483647u},
        {"4294967296", 2147483647u}, {"-99999999999", 2147483648u},
    };
    for (const auto& c : cases) {
        uci.set("traffic_separation.@ts_policy[4294967295].vlan_id", c.first);
        EXPECT_EQ(c.second, wlan_get_ts_vid_by_index(4294967295u)) << c.first;
    }
    uci.set("traffic_separation.@ts_policy[0].is_primary", "yes");
    EXPECT_EQ(0, wlan_get_ts_policy_is_pri_by_index(0));
    char out[64] = {};
    uci.set("wireless.ath1.ssid", std::string(80, 's'));
    EXPECT_TRUE(wlan_get_ssid_by_ifname("ath1", out) == 1 && std::string(63, 's') == out);
    std::string long_name(60, 'a');  // "wireless.<name>.ssid" does not fit 64 bytes
    uci.set("wireless." + long_name + ".ssid", "x");
    EXPECT_EQ(0, wlan_get_ssid_by_ifname(long_name.c_str(), out));
}

}  // namespace

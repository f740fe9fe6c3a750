#include <string>
#include <vector>

#include "config/config.h"
#include "sim_fixture.h"

namespace {

class ConfigParamTest : public SimNodeTest {
protected:
    const conf_param& param(const std::string& json) {
        conf = lynd_config{};
        std::string text = "{\"param\": " + json + "}";
        EXPECT_EQ(config_parse_result::OK, config_parse(&conf, text.data(), text.size()));
        return conf.param;
    }
    lynd_config conf;
};

std::vector<int> ints(std::initializer_list<int> v) { return v; }

TEST_F(ConfigParamTest, PeriodIsRaisedToAMultipleOfTheShortPeriod) {
    const std::pair<const char*, std::vector<int>> cases[] = {
        {R"({"short_period": 2, "period": 5})", {2000, 6000}}, {R"({"short_period": 2, "period": 6})", {2000, 6000}},
        {R"({"short_period": 2})", {2000, 2000}},              {R"({"short_period": 0, "period": "5"})", {0, 5000}},
        {R"({"period": 5})", {0, 5000}},                       {R"({"short_period": 3, "period": 4.9})", {3000, 6000}},
    };
    for (const auto& c : cases) {
        const conf_param& p = param(c.first);
        EXPECT_EQ(c.second, ints({int(p.short_period), int(p.period)})) << c.first;
    }
}

// The plain defaults: config_parse_test (a "param" of another kind).
TEST_F(ConfigParamTest, EmptyGroupGivesBandDefaultsAndNoGroupZeros) {
    const conf_param& p = param("{}");
    EXPECT_EQ(ints({0, 0, 13, 13, 13, 13}),
              std::vector<int>(p.abnormal_threshold_txrate_rxrate, p.abnormal_threshold_txrate_rxrate + 6));
    const int b = BAND_6G;
    EXPECT_EQ(ints({18, -85, 15, 100, -83, 17}),
              ints({p.linkquality_smoothing_factor[b], p.weaklink_threshold_rssi[b], p.weaklink_threshold_snr[b],
                    p.weaklink_threshold_rate[b], p.weaklink_hold_threshold_rssi[b],
                    p.weaklink_hold_threshold_snr[b]}));
    conf = lynd_config{};
    ASSERT_EQ(config_parse_result::OK, config_parse(&conf, "{}", 2));
    EXPECT_EQ(ints({0, 0, 0}), ints({conf.param.high_threshold, int(conf.param.exchange_vid[2]),
                                     conf.param.weaklink_threshold_rssi[0]}));
}

TEST_F(ConfigParamTest, ClampsAndLowBits) {
    EXPECT_EQ(100, param(R"({"high_threshold": 150})").high_threshold);
    EXPECT_EQ(0, param(R"({"high_threshold": -5})").high_threshold);
    EXPECT_EQ(44, param(R"({"cpu_threshold": 300})").cpu_threshold);
    EXPECT_EQ(44, param(R"({"adjusted_streams": 300})").adjusted_streams);
    EXPECT_EQ(232, param(R"({"adjusted_streams": 5000})").adjusted_streams);
    EXPECT_EQ(1000, param(R"({"idle_threshold": 70000})").idle_threshold);
    EXPECT_EQ(255, param(R"({"busy_count_threshold": -1})").busy_count_threshold);
    EXPECT_EQ(0u, param(R"({"adjusted_ratio": -7})").exchange_vid[2]);
    EXPECT_EQ(100, param(R"({"adjusted_ratio": 9999})").adjusted_ratio);
    EXPECT_EQ(4094u, conf.param.exchange_vid[2]);  // from the raw value, not the clamped ratio
}

TEST_F(ConfigParamTest, BandKeysLandInTheirBandAndSwitchesConvert) {
    const conf_param& p = param(R"({"abnormal_threshold_txrate_2g": 1, "abnormal_threshold_rxrate_2g": 2,
        "abnormal_threshold_rxrate_6g": 6, "weaklink_threshold_rssi_5g": -70, "reserved_ratio_6g": 120,
        "wlan_enable": 1, "cpu_limit": "on", "estimate_ack_enable": 0, "util_compensation": true})");
    EXPECT_EQ(ints({1, 2, 13, 13, 13, 6}),
              std::vector<int>(p.abnormal_threshold_txrate_rxrate, p.abnormal_threshold_txrate_rxrate + 6));
    EXPECT_EQ(ints({-85, -70, -85}), std::vector<int>(p.weaklink_threshold_rssi, p.weaklink_threshold_rssi + 3));
    EXPECT_EQ(100, p.reserved_ratio[BAND_6G]);
    EXPECT_TRUE(p.wlan_enable && p.cpu_limit && !p.estimate_ack_enable);
    EXPECT_TRUE(config_get_util_compensation());
    param("{}");
    EXPECT_FALSE(config_get_util_compensation());  // every load starts from off
}

}  // namespace

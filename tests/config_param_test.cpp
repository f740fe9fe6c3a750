#include <string>

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

TEST_F(ConfigParamTest, PeriodIsAMultipleOfTheShortPeriod) {
    struct Case {
        const char* json;
        uint32_t short_period, period;
    };
    const Case cases[] = {
        {R"({"short_period": 2, "period": 5})", 2000, 6000}, {R"({"short_period": 2, "period": 6})", 2000, 6000},
        {R"({"short_period": 2})", 2000, 2000},              {R"({"period": 5})", 0, 5000},
        {R"({"short_period": 0, "period": 5})", 0, 5000},    {R"({"short_period": 3, "period": 0})", 3000, 0},
        {R"({})", 0, 0},
    };
    for (const Case& c : cases) {
        const conf_param& p = param(c.json);
        EXPECT_EQ(c.short_period, p.short_period) << c.json;
        EXPECT_EQ(c.period, p.period) << c.json;
    }
}

TEST_F(ConfigParamTest, EmptyGroupGivesDefaultsAndNoGroupZeros) {
    const conf_param& p = param("{}");
    EXPECT_EQ(60, p.low_threshold);
    EXPECT_EQ(70, p.high_threshold);
    EXPECT_EQ(10, p.delta_threshold);
    EXPECT_EQ(10, p.idle_threshold);
    EXPECT_EQ(1, p.activate_pkts);
    EXPECT_EQ(1, p.adjusted_streams);
    EXPECT_EQ(50, p.adjusted_ratio);
    EXPECT_EQ(50u, p.exchange_vid[2]);
    EXPECT_EQ(0u, p.exchange_vid[0]);
    EXPECT_EQ(3, p.busy_count_threshold);
    EXPECT_EQ(1, p.handle_count);
    EXPECT_EQ(30, p.weaklink_bestpath_txrate_delta);
    for (int b = 0; b < BAND_COUNT; b++) {
        EXPECT_EQ(18, p.linkquality_smoothing_factor[b]);
        EXPECT_EQ(b == BAND_2G ? 0 : 13, abnormal_threshold_txrate(p, b));
        EXPECT_EQ(b == BAND_2G ? 0 : 13, abnormal_threshold_rxrate(p, b));
        EXPECT_EQ(-85, p.weaklink_threshold_rssi[b]);
        EXPECT_EQ(15, p.weaklink_threshold_snr[b]);
        EXPECT_EQ(100, p.weaklink_threshold_rate[b]);
        EXPECT_EQ(-83, p.weaklink_hold_threshold_rssi[b]);
        EXPECT_EQ(17, p.weaklink_hold_threshold_snr[b]);
    }
    conf = lynd_config{};
    std::string none = "{\"enable\": true}";
    ASSERT_EQ(config_parse_result::OK, config_parse(&conf, none.data(), none.size()));
    EXPECT_EQ(0, conf.param.high_threshold);
    EXPECT_EQ(0, conf.param.busy_count_threshold);
    EXPECT_EQ(0, conf.param.weaklink_threshold_rssi[0]);
}

TEST_F(ConfigParamTest, ClampsAndLowBits) {
    EXPECT_EQ(100, param(R"({"high_threshold": 150})").high_threshold);
    EXPECT_EQ(0, param(R"({"high_threshold": -5})").high_threshold);
    EXPECT_EQ(44, param(R"({"cpu_threshold": 300})").cpu_threshold);
    EXPECT_EQ(44, param(R"({"adjusted_streams": 300})").adjusted_streams);
    EXPECT_EQ(232, param(R"({"adjusted_streams": 5000})").adjusted_streams);
    EXPECT_EQ(1000, param(R"({"idle_threshold": 70000})").idle_threshold);
    EXPECT_EQ(0, param(R"({"activate_pkts": -2})").activate_pkts);
    EXPECT_EQ(0u, param(R"({"adjusted_ratio": -7})").exchange_vid[2]);
    EXPECT_EQ(4094u, param(R"({"adjusted_ratio": 9999})").exchange_vid[2]);
    EXPECT_EQ(255, param(R"({"busy_count_threshold": -1})").busy_count_threshold);
    EXPECT_EQ(100, param(R"({"reserved_ratio_5g": 101})").reserved_ratio[BAND_5G]);
}

TEST_F(ConfigParamTest, BandKeysLandInTheirBand) {
    const conf_param& p = param(R"({"abnormal_threshold_txrate_2g": 1, "abnormal_threshold_rxrate_2g": 2,
        "abnormal_threshold_txrate_6g": 5, "abnormal_threshold_rxrate_6g": 6, "weaklink_threshold_rssi_5g": -70,
        "weaklink_hold_threshold_snr_6g": 21, "linkquality_smoothing_factor_2g": 3, "reserved_ratio_6g": 12,
        "period": "7", "wlan_enable": 1, "cpu_limit": "on", "estimate_ack_enable": 0})");
    EXPECT_EQ((std::vector<int32_t>{1, 2, 13, 13, 5, 6}),
              std::vector<int32_t>(p.abnormal_threshold_txrate_rxrate, p.abnormal_threshold_txrate_rxrate + 6));
    EXPECT_EQ(-70, p.weaklink_threshold_rssi[BAND_5G]);
    EXPECT_EQ(-85, p.weaklink_threshold_rssi[BAND_6G]);
    EXPECT_EQ(21, p.weaklink_hold_threshold_snr[BAND_6G]);
    EXPECT_EQ(3, p.linkquality_smoothing_factor[BAND_2G]);
    EXPECT_EQ(12, p.reserved_ratio[BAND_6G]);
    EXPECT_EQ(7000u, p.period);
    EXPECT_TRUE(p.wlan_enable);
    EXPECT_TRUE(p.cpu_limit);
    EXPECT_FALSE(p.estimate_ack_enable);
}

TEST_F(ConfigParamTest, UtilCompensationIsReadAndForgotten) {
    param(R"({"util_compensation": true})");
    EXPECT_TRUE(config_get_util_compensation());
    param("{}");
    EXPECT_FALSE(config_get_util_compensation());
}

}  // namespace

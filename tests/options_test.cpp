#include <string>
#include <vector>

#include "daemon/options.h"
#include "sim_fixture.h"
#include "wlan/wlan_platform.h"

namespace {

class OptionsTest : public SimNodeTest {
protected:
    lynd_option_action parse(std::vector<std::string> args) {
        args.insert(args.begin(), "lynd");
        std::vector<char*> argv;
        for (auto& a : args)
            argv.push_back(&a[0]);
        argv.push_back(nullptr);
        storage_ = std::move(args);
        return lynd_parse_options(static_cast<int>(storage_.size()), argv.data(), &opt);
    }
    lynd_options opt{};

private:
    std::vector<std::string> storage_;
};

TEST_F(OptionsTest, LevelIsClampedAndNonNumbersGiveOne) {
    const std::pair<const char*, int> cases[] = {{"0", 1}, {"-3", 1}, {"7", 6}, {"100", 6},
                                                 {"abc", 1}, {"4", 4}, {"1", 1}};
    for (const auto& c : cases) {
        EXPECT_EQ(lynd_option_action::RUN, parse({"-l", c.first}));
        EXPECT_EQ(c.second, g_lynd_dgb_lvl) << c.first;
    }
}

TEST_F(OptionsTest, LevelLineOnlyAboveThree) {
    parse({"-l", "3"});
    EXPECT_FALSE(host.logged("g_lynd_dgb_lvl="));
    parse({"-l", "4"});
    EXPECT_TRUE(host.logged("<LYND_LOG>[main, "));
    EXPECT_TRUE(host.logged("] g_lynd_dgb_lvl=4!"));
}

TEST_F(OptionsTest, ConfigPathDefaultsAndLaterOneWins) {
    parse({});
    EXPECT_STREQ("/etc/lynd.json", opt.config_path);
    parse({"-c", "/a.json", "-l", "2", "-c", "/b.json"});
    EXPECT_STREQ("/b.json", opt.config_path);
}

TEST_F(OptionsTest, HelpAndUsageErrorsPrintTheUsageLine) {
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(lynd_option_action::HELP, parse({"-h"}));
    EXPECT_EQ("lynd [-c config] [-h]\n", ::testing::internal::GetCapturedStderr());
    for (auto args : {std::vector<std::string>{"-x"}, std::vector<std::string>{"-c"}}) {
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(lynd_option_action::USAGE, parse(args));
        EXPECT_EQ("lynd [-c config] [-h]\n", ::testing::internal::GetCapturedStderr());
    }
}

int g_test_calls;
int count_test() {
    g_test_calls++;
    return 7;
}

TEST_F(OptionsTest, TestModeActsWhenReadAndIgnoresTheRest) {
    wlan_platform table{};
    table.platform_test = count_test;
    const wlan_platform* saved = wlan_platform_ops;
    wlan_platform_ops = &table;
    g_test_calls = 0;
    EXPECT_EQ(lynd_option_action::TEST, parse({"-t", "-c", "/nonexistent", "-x"}));
    EXPECT_EQ(lynd_option_action::TEST, parse({"-c", "/nonexistent", "-t"}));
    wlan_platform_ops = saved;
    EXPECT_EQ(2, g_test_calls);
    EXPECT_EQ(5, g_lynd_dgb_lvl);
    EXPECT_EQ(5, g_dgb_lvl);
}

}  // namespace

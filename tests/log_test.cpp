#include <string>

#include "core/log.h"
#include "sim_fixture.h"

namespace {

using LogTest = SimNodeTest;

TEST_F(LogTest, EachTagPrintsFromItsLevelOn) {
    struct Case {
        int level;
        bool err, warn, info, log, debug, trace;
    };
    const Case cases[] = {
        {0, false, false, false, false, false, false}, {1, true, false, false, false, false, false},
        {2, true, true, false, false, false, false},   {3, true, true, true, false, false, false},
        {5, true, true, true, true, true, false},      {6, true, true, true, true, true, true},
    };
    for (const Case& c : cases) {
        host.clear_console();
        g_lynd_dgb_lvl = c.level;
        LYND_ERR("e");
        LYND_WARN("w");
        LYND_INFO("i");
        LYND_LOG("l");
        LYND_DEBUG("d");
        LYND_TRACE("t");
        EXPECT_EQ(c.err, host.logged("<LYND_ERR>")) << c.level;
        EXPECT_EQ(c.warn, host.logged("<LYND_WARN>")) << c.level;
        EXPECT_EQ(c.info, host.logged("<LYND_INFO>")) << c.level;
        EXPECT_EQ(c.log, host.logged("<LYND_LOG>")) << c.level;
        EXPECT_EQ(c.debug, host.logged("<LYND_DEBUG>")) << c.level;
        EXPECT_EQ(c.trace, host.logged("<LYND_TRACE>")) << c.level;
    }
}

TEST_F(LogTest, LineCarriesTagFunctionAndLine) {
    int line = __LINE__ + 1;
    LYND_ERR("bridge %s gone", "br-lan");
    ASSERT_EQ(1u, host.console_lines().size());
    EXPECT_EQ("<LYND_ERR>[TestBody, " + std::to_string(line) + "] bridge br-lan gone", host.console_lines()[0]);
}

TEST_F(LogTest, ShellCharactersArriveLiterally) {
    const char* ssid = "\"; rm -rf /; echo \"$(reboot)`id`\\";
    LYND_ERR("ssid %s", ssid);
    ASSERT_EQ(1u, host.console_lines().size());
    EXPECT_NE(std::string::npos, host.console_lines()[0].find(ssid));
    EXPECT_TRUE(host.runs().empty());
}

TEST_F(LogTest, EmbeddedNewlinesMakeSeveralConsoleLines) {
    lynd_printf("first\nsecond");
    ASSERT_EQ(1u, host.console_lines().size());
    EXPECT_EQ("first\nsecond", host.console_lines()[0]);
}

TEST_F(LogTest, LongMessageIsCutAt2047Characters) {
    std::string big(5000, 'x');
    lynd_printf("%s", big.c_str());
    ASSERT_EQ(1u, host.console_lines().size());
    EXPECT_EQ(LYND_LOG_MSG_MAX, host.console_lines()[0].size());
}

TEST_F(LogTest, FatalPrintsEvenAtLevelZeroAndExitsOne) {
    g_lynd_dgb_lvl = 0;
    EXPECT_EXIT(
        {
            host.set_echo(true);
            LYND_FATAL("parse config");
        },
        ::testing::ExitedWithCode(1), "<LYND_FATAL>\\[TestBody, [0-9]+\\] parse config");
}

}  // namespace

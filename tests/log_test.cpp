#include <syslog.h>

#include <string>
#include <vector>

#include "core/log.h"
#include "sim_fixture.h"

namespace {

using LogTest = SimNodeTest;

void log_each_tag() {
    LYND_ERR("e");
    LYND_WARN("w");
    LYND_INFO("i");
    LYND_LOG("l");
    LYND_DEBUG("d");
    LYND_TRACE("t");
}

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
        log_each_tag();
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

TEST_F(LogTest, TaggedLineIsCutAt2047CharactersWithItsPrefix) {
    const std::string big(5000, 'x');
    struct {
        const char* fn;
        const char* message;
        const char* starts;
    } cases[] = {
        {"fn", big.c_str(), "<LYND_ERR>[fn, "},   // the message is cut
        {big.c_str(), "tail", "<LYND_ERR>[xxx"},  // the prefix alone fills the line
    };
    for (const auto& c : cases) {
        host.clear_console();
        LYND_ERR_AS(c.fn, "%s", c.message);
        ASSERT_EQ(1u, host.console_lines().size());
        const std::string& got = host.console_lines()[0];
        EXPECT_EQ(LYND_LOG_MSG_MAX, got.size()) << c.starts;
        EXPECT_EQ(0u, got.find(c.starts));
        EXPECT_EQ('x', got.back());
    }
}

TEST_F(LogTest, FatalPrintsEvenAtLevelZero) {
    g_lynd_dgb_lvl = 0;
    LYND_FATAL("parse config");
    ASSERT_EQ(1u, host.console_lines().size());
    EXPECT_EQ(0u, host.console_lines()[0].find("<LYND_FATAL>[TestBody, "));
}

// The system log as sink, for one test.
struct SyslogOn {
    SyslogOn() { lynd_log_to_syslog(true); }
    ~SyslogOn() { lynd_log_to_syslog(false); }
};

TEST_F(LogTest, SyslogTakesEachLineAtItsTagsPriorityAndTheConsoleNone) {
    SyslogOn on;
    g_lynd_dgb_lvl = LYND_LVL_TRACE;
    log_each_tag();
    LYND_DECISION("x");
    lynd_printf("dump\n  second");
    std::vector<std::string> prefixes;
    for (const std::string& l : host.syslog_lines())
        prefixes.push_back(l.substr(0, l.find('[')));
    const std::vector<std::string> want = {
        "<3><LYND_ERR>", "<4><LYND_WARN>",  "<5><LYND_INFO>",     "<6><LYND_LOG>",  "<7><LYND_DEBUG>",
        "<7><LYND_TRACE>", "<5><LYND_DECISION>", "<6>dump", "<6>  second",
    };
    EXPECT_EQ(want, prefixes);
    EXPECT_TRUE(host.console_lines().empty());
    EXPECT_EQ(LOG_CRIT, lynd_log_priority("<LYND_FATAL>[main, 1] parse config"));
    // The level still decides what is written at all.
    g_lynd_dgb_lvl = LYND_LVL_ERR;
    host.clear_console();
    LYND_WARN("w");
    LYND_ERR("e");
    ASSERT_EQ(1u, host.syslog_lines().size());
    EXPECT_EQ(0u, host.syslog_lines()[0].find("<3><LYND_ERR>[TestBody, "));
}

TEST_F(LogTest, ConsoleStaysTheSinkUntilSyslogIsAskedFor) {
    LYND_ERR("e");
    EXPECT_EQ(1u, host.console_lines().size());
    EXPECT_TRUE(host.syslog_lines().empty());
}

}  // namespace

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
    const char* const tags[] = {"<LYND_ERR>", "<LYND_WARN>", "<LYND_INFO>", "<LYND_LOG>", "<LYND_DEBUG>", "<LYND_TRACE>"};
    for (int level = 0; level <= 6; level++) {
        host.clear_console();
        g_lynd_dgb_lvl = level;
        log_each_tag();
        for (int t = 0; t < 6; t++)
            EXPECT_EQ(t < level, host.logged(tags[t])) << level << " " << tags[t];
    }
}

// The console is the sink until the system log is asked for.
TEST_F(LogTest, LineCarriesTagFunctionAndLine) {
    int line = __LINE__ + 1;
    LYND_ERR("bridge %s gone", "br-lan");
    ASSERT_EQ(1u, host.console_lines().size());
    EXPECT_EQ("<LYND_ERR>[TestBody, " + std::to_string(line) + "] bridge br-lan gone", host.console_lines()[0]);
    EXPECT_TRUE(host.syslog_lines().empty());
}

TEST_F(LogTest, ShellCharactersArriveLiterally) {
    const char* ssid = "\"; rm -rf /; echo \"$(reboot)`id`\\";
    LYND_ERR("ssid %s", ssid);
    ASSERT_EQ(1u, host.console_lines().size());
    EXPECT_NE(std::string::npos, host.console_lines()[0].find(ssid));
    EXPECT_TRUE(host.runs().empty());
}

// Embedded newlines stay in one write; a long message is cut at 2047 characters.
TEST_F(LogTest, AMessageIsOneWriteCutToItsMaximum) {
    lynd_printf("first\nsecond");
    lynd_printf("%s", std::string(5000, 'x').c_str());
    ASSERT_EQ(2u, host.console_lines().size());
    EXPECT_EQ("first\nsecond", host.console_lines()[0]);
    EXPECT_EQ(LYND_LOG_MSG_MAX, host.console_lines()[1].size());
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

}  // namespace

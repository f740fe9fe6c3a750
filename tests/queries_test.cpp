#include <cstring>
#include <string>

#include "core/counters.h"
#include "core/queries.h"
#include "platform/host.h"
#include "targets/linux/linux_host.h"
#include "sim_fixture.h"

namespace {

// Tools run for real here: the argument vector reaches them untouched.
class ExecTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        lynd::install_seams({&loop, &linux_host, &uci, &bridge, &bus});
    }
    lynd::LinuxHost linux_host{nullptr};
    char buf[64] = {};
};

TEST_F(ExecTest, ReadsAtMostSizeBytesAndAddsNoTerminator) {
    const char* const echo[] = {"echo", "hello", nullptr};
    std::memset(buf, 'Z', sizeof buf);
    EXPECT_EQ(3, lynd_exec_and_res(echo, buf, 3));
    EXPECT_EQ(0, std::memcmp(buf, "helZ", 4));
    const char* const quiet[] = {"true", nullptr};
    EXPECT_EQ(0, lynd_exec_and_res(quiet, buf, sizeof buf - 1));
}

TEST_F(ExecTest, BadArgumentsAndMissingToolGiveMinusOne) {
    const char* const echo[] = {"echo", "x", nullptr};
    const char* const missing[] = {"/nonexistent/tool", nullptr};
    EXPECT_EQ(-1, lynd_exec_and_res(nullptr, buf, 4));
    EXPECT_EQ(-1, lynd_exec_and_res(echo, nullptr, 4));
    EXPECT_EQ(-1, lynd_exec_and_res(echo, buf, 0));
    EXPECT_EQ(-1, lynd_exec_and_res(missing, buf, 4));
}

TEST_F(ExecTest, ShellTextInAnArgumentStaysText) {
    const char* const echo[] = {"echo", "$(id) `id`; exit 3", nullptr};
    int n = lynd_exec_and_res(echo, buf, sizeof buf - 1);
    EXPECT_EQ("$(id) `id`; exit 3\n", std::string(buf, n > 0 ? n : 0));
}

// A tool that prints without end, as the simulator models it, gives a buffer
// full; one that hangs costs the loop the deadline, one ERR and one count
// (the hostile_tools scenario), its line in printable text.
using ToolDeadlineTest = SimNodeTest;

TEST_F(ToolDeadlineTest, AnEndlessToolFillsTheBufferAndIsNoFailure) {
    lynd_counters_reset();
    host.set_tool("yes", "y\n", 0, lynd::SimToolMode::ENDLESS);
    const char* const argv[] = {"yes", nullptr};
    char out[5];
    EXPECT_EQ(5, lynd_tool_capture(argv, out, sizeof out));
    EXPECT_EQ("y\ny\ny", std::string(out, 5));
    EXPECT_EQ(0u, g_counters.tool_run_failures);
    EXPECT_EQ(-1, lynd_tool_status(argv));  // nobody reads it: it runs into the deadline
    EXPECT_EQ(1u, g_counters.tool_run_failures);
}

// Unprintable bytes of an argument do not reach the log as they are.
TEST_F(ToolDeadlineTest, TheLineNamesTheToolInPrintableText) {
    host.set_tool("wpa_cli \x1b[2J\n", "", 0, lynd::SimToolMode::HANGS);
    const char* const argv[] = {"wpa_cli", "\x1b[2J\n", nullptr};
    EXPECT_EQ(-1, lynd_tool_status(argv));
    ASSERT_FALSE(host.console_lines().empty());
    EXPECT_NE(std::string::npos, host.console_lines().back().find("ms: wpa_cli ?[2J?")) << host.console_lines().back();
}

using UciQueryTest = SimNodeTest;

// A missing option leaves the buffer as it was; a value is cut to the size
// less one, a path at 64 characters.
TEST_F(UciQueryTest, ValuesAndPathsAreCutAndAMissingOptionWritesNothing) {
    char value[8] = "keep";
    uci.set("sysmode.sysmode.other", "x");
    EXPECT_FALSE(lynd_uci_get_value("sysmode.sysmode.mode", value, sizeof value));
    EXPECT_STREQ("keep", value);
    uci.set("wireless.ath0.ssid", "a-very-long-ssid");
    EXPECT_TRUE(lynd_uci_get_value("wireless.ath0.ssid", value, 5));
    EXPECT_STREQ("a-ve", value);
    std::string path = "p.s." + std::string(60, 'o');  // 64 characters
    uci.set(path, "v");
    EXPECT_TRUE(lynd_uci_get_value((path + "extra").c_str(), value, sizeof value));
}

TEST_F(UciQueryTest, BadInputAndContextFailureAreLogged) {
    char value[8] = {};
    EXPECT_FALSE(lynd_uci_get_value(nullptr, value, sizeof value));
    EXPECT_TRUE(host.logged("] invalid input ...\n"));
    uci.set("a.b.c", "v");
    uci.set_context_failure(true);
    EXPECT_FALSE(lynd_uci_get_value("a.b.c", value, sizeof value));
    EXPECT_TRUE(host.logged("<LYND_ERR>[lynd_uci_get_value, "));
    EXPECT_TRUE(host.logged("] uci_alloc_context failed...\n"));
}

}  // namespace

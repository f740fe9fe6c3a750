// Tools on the real host: each run ends by its deadline, a tool that will not
// stop is killed with what it started, and the child starts clean whatever
// the daemon did with its own signals.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "platform/host.h"
#include "targets/linux/tool_run.h"
#include "tests/temp_dir.h"

namespace {

using lynd::TOOL_TIMED_OUT;
using lynd::tool_run_capture;
using lynd::tool_run_status;

constexpr int kDeadlineMs = 300;
// Generous for a loaded machine or an emulator; far below a hanging tool.
constexpr int kBoundMs = kDeadlineMs + 2000;

struct Timed {
    int rc;
    long ms;
};

template <typename F>
Timed timed(F run) {
    auto start = std::chrono::steady_clock::now();
    int rc = run();
    auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
    return Timed{rc, static_cast<long>(ms)};
}

std::string capture(const char* const argv[], size_t size = 256, int deadline = kDeadlineMs) {
    char out[4096];
    int n = tool_run_capture(argv, out, size < sizeof out ? size : sizeof out, deadline);
    return n < 0 ? "<" + std::to_string(n) + ">" : std::string(out, static_cast<size_t>(n));
}

// Gone, or at most a zombie of a parent other than this process.
bool process_gone(pid_t pid) {
    if (::kill(pid, 0) != 0)
        return errno == ESRCH;
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(stat)), std::istreambuf_iterator<char>());
    size_t paren = text.rfind(')');
    return paren != std::string::npos && text.compare(paren + 2, 1, "Z") == 0;
}

pid_t pid_in(const std::string& path) {
    std::ifstream in(path);
    long pid = 0;
    in >> pid;
    return static_cast<pid_t>(pid);
}

TEST(ToolRun, AToolThatHangsIsKilledAtItsDeadlineAndReaped) {
    TempDir dir;
    const std::string pid_file = dir.path + "/pid";
    const std::string script = "echo $$ > " + pid_file + "; exec sleep 30";
    const char* const hangs[] = {"sh", "-c", script.c_str(), nullptr};
    char out[64];
    Timed t = timed([&] { return tool_run_capture(hangs, out, sizeof out, kDeadlineMs); });
    EXPECT_EQ(TOOL_TIMED_OUT, t.rc);
    EXPECT_GE(t.ms, kDeadlineMs - 10);
    EXPECT_LT(t.ms, kBoundMs);
    pid_t pid = pid_in(pid_file);
    ASSERT_GT(pid, 0);
    EXPECT_TRUE(process_gone(pid)) << pid;

    Timed s = timed([&] { return tool_run_status(hangs, kDeadlineMs); });
    EXPECT_EQ(TOOL_TIMED_OUT, s.rc);
    EXPECT_LT(s.ms, kBoundMs);
}

// What the tool left running goes with it: the run kills its process group.
TEST(ToolRun, WhatAHangingToolStartedIsKilledToo) {
    TempDir dir;
    const std::string pid_file = dir.path + "/pid";
    const std::string script = "sleep 30 & echo $! > " + pid_file + "; wait";
    const char* const argv[] = {"sh", "-c", script.c_str(), nullptr};
    EXPECT_EQ(TOOL_TIMED_OUT, tool_run_status(argv, kDeadlineMs));
    pid_t pid = pid_in(pid_file);
    ASSERT_GT(pid, 0);
    for (int i = 0; i < 100 && !process_gone(pid); i++)
        usleep(10000);
    EXPECT_TRUE(process_gone(pid)) << pid;
}

// A tool that prints without end gives a buffer full, quickly: once the pipe
// closes it dies of SIGPIPE even when the daemon ignores SIGPIPE itself.
TEST(ToolRun, AnEndlessToolGivesABufferFullAndEnds) {
    struct sigaction ign {}, old {};
    ign.sa_handler = SIG_IGN;
    ASSERT_EQ(0, sigaction(SIGPIPE, &ign, &old));
    const char* const endless[] = {"sh", "-c", "while :; do echo y; done", nullptr};
    char out[64];
    Timed t = timed([&] { return tool_run_capture(endless, out, sizeof out, 10000); });
    sigaction(SIGPIPE, &old, nullptr);
    ASSERT_EQ(64, t.rc);
    EXPECT_EQ("y\ny\n", std::string(out, 4));
    EXPECT_LT(t.ms, 5000);
}

// One that shrugs SIGPIPE off is killed at the deadline.
TEST(ToolRun, AnEndlessToolThatIgnoresSigpipeIsKilledAtItsDeadline) {
    const char* const stubborn[] = {"sh", "-c", "trap '' PIPE; exec 2>/dev/null; while :; do echo y; done", nullptr};
    char out[64];
    Timed t = timed([&] { return tool_run_capture(stubborn, out, sizeof out, kDeadlineMs); });
    EXPECT_EQ(TOOL_TIMED_OUT, t.rc);
    EXPECT_LT(t.ms, kBoundMs);
}

// Output that ends before the deadline is whole, however slow it comes.
TEST(ToolRun, OutputWithinTheDeadlineIsWhole) {
    const char* const slow[] = {"sh", "-c", "echo a; sleep 0.1; echo b", nullptr};
    EXPECT_EQ("a\nb\n", capture(slow, 256, 3000));
    const char* const exits_3[] = {"sh", "-c", "exit 3", nullptr};
    EXPECT_EQ(3, tool_run_status(exits_3, 3000));
    const char* const dies[] = {"sh", "-c", "kill -KILL $$", nullptr};
    EXPECT_EQ(-1, tool_run_status(dies, 3000));
}

// The daemon ignores SIGPIPE and may ignore or block others; its tools start
// with every signal at its default and none blocked, so each of these kills
// the shell before it can say it is alive.
TEST(ToolRun, TheChildStartsWithDefaultSignalsAndAnEmptyMask) {
    struct sigaction ign {}, old_pipe {}, old_usr1 {};
    ign.sa_handler = SIG_IGN;
    ASSERT_EQ(0, sigaction(SIGPIPE, &ign, &old_pipe));
    ASSERT_EQ(0, sigaction(SIGUSR1, &ign, &old_usr1));
    sigset_t usr2, old_mask;
    sigemptyset(&usr2);
    sigaddset(&usr2, SIGUSR2);
    ASSERT_EQ(0, sigprocmask(SIG_BLOCK, &usr2, &old_mask));
    std::string got[3];
    const char* const signals[] = {"PIPE", "USR1", "USR2"};
    for (int i = 0; i < 3; i++) {
        const std::string script = std::string("kill -") + signals[i] + " $$; echo alive";
        const char* const argv[] = {"sh", "-c", script.c_str(), nullptr};
        got[i] = capture(argv, 256, 3000);
    }
    sigprocmask(SIG_SETMASK, &old_mask, nullptr);
    sigaction(SIGUSR1, &old_usr1, nullptr);
    sigaction(SIGPIPE, &old_pipe, nullptr);
    for (int i = 0; i < 3; i++)
        EXPECT_EQ("", got[i]) << "SIG" << signals[i] << " reached the tool as the daemon has it";
}

// Cannot run: -1, and no shell ever stands in, not even for a file without
// a format that an exec refuses.
TEST(ToolRun, WhatCannotBeExecutedIsMinusOneWithoutAShell) {
    TempDir dir;
    const std::string script = dir.path + "/no_format";
    const std::string marker = dir.path + "/ran";
    { std::ofstream(script) << "touch " << marker << "\nexit 3\n"; }
    ASSERT_EQ(0, chmod(script.c_str(), 0755));
    const std::string subdir = dir.path + "/adir";
    ASSERT_EQ(0, mkdir(subdir.c_str(), 0755));
    const char* const cases[][2] = {{script.c_str(), nullptr}, {subdir.c_str(), nullptr}, {"", nullptr}};
    for (const auto& argv : cases) {
        EXPECT_EQ(-1, tool_run_status(argv, 3000)) << argv[0];
        EXPECT_EQ("<-1>", capture(argv)) << argv[0];
    }
    EXPECT_FALSE(std::ifstream(marker).good());
    const char* const none[] = {nullptr};
    EXPECT_EQ(-1, tool_run_status(none, 3000));
}

// A name without a slash is looked up on PATH, first match that can run.
TEST(ToolRun, ANameIsFoundOnPath) {
    TempDir dir;
    const std::string first = dir.path + "/a", second = dir.path + "/b";
    ASSERT_EQ(0, mkdir(first.c_str(), 0755));
    ASSERT_EQ(0, mkdir(second.c_str(), 0755));
    { std::ofstream(first + "/lynd-test-tool") << "#!/bin/sh\necho first\n"; }
    { std::ofstream(second + "/lynd-test-tool") << "#!/bin/sh\necho second\n"; }
    ASSERT_EQ(0, chmod((second + "/lynd-test-tool").c_str(), 0755));
    std::string old_path = getenv("PATH") != nullptr ? getenv("PATH") : "";
    setenv("PATH", (":" + first + ":" + second).c_str(), 1);
    const char* const argv[] = {"lynd-test-tool", nullptr};
    std::string got = capture(argv);
    setenv("PATH", old_path.c_str(), 1);
    EXPECT_EQ("second\n", got);
}

}  // namespace

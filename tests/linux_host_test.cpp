// The real host against a real temporary directory and a console that is
// not there.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "core/counters.h"
#include "file_text.h"
#include "targets/linux/linux_host.h"
#include "temp_dir.h"

namespace {

// Every entry of dir but . and .., so a leftover under any name is seen.
int entries_in(const std::string& dir) {
    DIR* d = opendir(dir.c_str());
    if (d == nullptr)
        return -1;
    int n = 0;
    while (dirent* e = readdir(d))
        n += std::string(e->d_name) != "." && std::string(e->d_name) != "..";
    closedir(d);
    return n;
}

// Writes line through a host whose console is console, with standard error
// sent to a file; returns what reached standard error.
std::string stderr_of_console_write(const char* console, const char* line) {
    char path[] = "/tmp/lynd_stderr_XXXXXX";
    int fd = mkstemp(path);
    if (fd < 0)
        return "mkstemp failed";
    int saved = dup(STDERR_FILENO);
    dup2(fd, STDERR_FILENO);
    {
        lynd::LinuxHost host(console);
        host.console_write(line, std::strlen(line));
    }
    dup2(saved, STDERR_FILENO);
    close(saved);
    close(fd);
    std::string got = slurp(path);
    std::remove(path);
    return got;
}

class LinuxHostFiles : public ::testing::Test {
protected:
    TempDir tmp;
    const std::string& dir = tmp.path;
    lynd::LinuxHost host{nullptr};
};

// Another user's process plants a link or a file where the daemon used to
// write: neither is touched, nor steers the write, nor blocks it.
TEST_F(LinuxHostFiles, PlantedFilesAndLinksNeitherRedirectNorBlockAStateFile) {
    const std::string state = dir + "/state", victim = dir + "/victim";
    { std::ofstream(victim) << "precious"; }
    ASSERT_EQ(0, symlink(victim.c_str(), (state + ".tmp").c_str()));
    ASSERT_TRUE(host.write_file(state.c_str(), "ath12\n", 6, nullptr));
    EXPECT_EQ("ath12\n", slurp(state));
    EXPECT_EQ("precious", slurp(victim));
    struct stat st{};
    ASSERT_EQ(0, lstat((state + ".tmp").c_str(), &st));
    EXPECT_TRUE(S_ISLNK(st.st_mode));
    ASSERT_EQ(0, lstat(state.c_str(), &st));
    EXPECT_TRUE(S_ISREG(st.st_mode));
    EXPECT_EQ(0644u, st.st_mode & 0777u);

    // A link at the final name is replaced, not followed.
    ASSERT_EQ(0, std::remove(state.c_str()));
    ASSERT_EQ(0, symlink(victim.c_str(), state.c_str()));
    ASSERT_TRUE(host.write_file(state.c_str(), "ath02\n", 6, nullptr));
    EXPECT_EQ("precious", slurp(victim));
    ASSERT_EQ(0, lstat(state.c_str(), &st));
    EXPECT_TRUE(S_ISREG(st.st_mode));
    EXPECT_EQ("ath02\n", slurp(state));

    // No temporary file is left behind: state, the planted link, the victim.
    EXPECT_EQ(3, entries_in(dir));
    EXPECT_FALSE(host.write_file((dir + "/no/such/dir").c_str(), "x", 1, nullptr));
}

// A file of another process at the old fixed name keeps its bytes, and the
// state file is still published, as a file of its own.
TEST_F(LinuxHostFiles, APlantedFileAtTheOldNameIsLeftAlone) {
    const std::string state = dir + "/state", planted = state + ".tmp";
    { std::ofstream(planted) << "planted"; }
    struct stat before{};
    ASSERT_EQ(0, stat(planted.c_str(), &before));
    ASSERT_TRUE(host.write_file(state.c_str(), "br-lan\n", 7, nullptr));
    EXPECT_EQ("br-lan\n", slurp(state));
    EXPECT_EQ("planted", slurp(planted));
    struct stat after{};
    ASSERT_EQ(0, stat(state.c_str(), &after));
    EXPECT_NE(before.st_ino, after.st_ino);
    EXPECT_EQ(2, entries_in(dir));
}

// A console missing or taking no bytes (a full device) hands the line to
// standard error, which procd logs; a working one leaves it quiet.
TEST(LinuxHostConsole, ALineTheConsoleCannotTakeGoesToStandardError) {
    const char line[] = "<LYND_ERR>[x, 1] lost?\n";
    EXPECT_EQ(line, stderr_of_console_write("/nonexistent/console", line));
    EXPECT_EQ(line, stderr_of_console_write("/dev/full", line));
    EXPECT_EQ("", stderr_of_console_write("/dev/null", line));
}

// A tool that cannot be run is -1, told apart from one that ran and failed,
// whatever the C library or an emulator makes of the exec.
TEST_F(LinuxHostFiles, AToolThatCannotBeRunIsMinusOne) {
    const std::string plain = dir + "/state";
    { std::ofstream(plain) << "not a program"; }
    const char* const missing[] = {"/nonexistent/tool", nullptr};
    const char* const unnamed[] = {"lynd-no-such-tool", nullptr};
    const char* const not_executable[] = {plain.c_str(), nullptr};
    char out[16] = {};
    for (const char* const* argv : {missing, unnamed, not_executable}) {
        EXPECT_EQ(-1, host.run_status(argv)) << argv[0];
        EXPECT_EQ(-1, host.run_capture(argv, out, sizeof out)) << argv[0];
    }
    const char* const exits_127[] = {"sh", "-c", "exit 127", nullptr};
    EXPECT_EQ(127, host.run_status(exits_127));
}

// A directory or a full disk where a state file goes: the write fails and
// says why, and leaves nothing behind.
TEST_F(LinuxHostFiles, AWriteThatCannotBeMadeSaysWhy) {
    const std::string state = dir + "/state";
    ASSERT_EQ(0, mkdir(state.c_str(), 0700));
    int err = 0;
    EXPECT_FALSE(host.write_file(state.c_str(), "ath12\n", 6, &err));
    EXPECT_EQ(EISDIR, err);
    EXPECT_EQ(1, entries_in(dir));
    rmdir(state.c_str());
    EXPECT_FALSE(host.write_file("/dev/full/state", "x", 1, &err));
    EXPECT_NE(0, err);
    EXPECT_TRUE(host.write_file(state.c_str(), "ath12\n", 6, &err));
    EXPECT_EQ(0, err);
}

// The console is a pipe that nobody reads, filled to the brim (a serial
// line under XOFF): a thousand lines go by without a wait, each counted as
// dropped. Run in a child, so that a write that blocks fails the test
// instead of hanging it.
TEST(LinuxHostConsole, AStalledConsoleNeverBlocks) {
    TempDir dir;
    const std::string fifo = dir.path + "/console";
    ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
    int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
    int filler = open(fifo.c_str(), O_WRONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    ASSERT_GE(filler, 0);
    char block[4096] = {};
    while (write(filler, block, sizeof block) > 0) {
    }
    pid_t child = fork();
    if (child == 0) {
        lynd_counters_reset();
        lynd::LinuxHost host(fifo.c_str());
        const char line[] = "<LYND_LOG>[f, 1] stalled?\n";
        for (int i = 0; i < 1000; i++)
            host.console_write(line, sizeof line - 1);
        _exit(g_counters.console_lines_dropped == 1000 ? 0 : 3);
    }
    int status = -1;
    for (int waited = 0; waited < 500 && waitpid(child, &status, WNOHANG) == 0; waited++)
        usleep(10000);
    if (waitpid(child, &status, WNOHANG) == 0) {
        kill(child, SIGKILL);
        waitpid(child, &status, 0);
        ADD_FAILURE() << "the console write blocked";
    } else {
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    }
    close(filler);
    close(reader);
}

}  // namespace

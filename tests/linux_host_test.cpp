// The real host against a real temporary directory and a console that is
// not there.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "targets/linux/linux_host.h"

namespace {

std::string read_all(const std::string& path) {
    std::ifstream in(path);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

class LinuxHostFiles : public ::testing::Test {
protected:
    void SetUp() override {
        char tmpl[] = "/tmp/lynd_host_XXXXXX";
        ASSERT_NE(nullptr, mkdtemp(tmpl));
        dir = tmpl;
    }
    void TearDown() override {
        for (const char* f : {"state", "state.tmp", "victim", "other"})
            std::remove((dir + "/" + f).c_str());
        rmdir(dir.c_str());
    }
    std::string dir;
    lynd::LinuxHost host{nullptr};
};

// Another user's process plants a link or a file where the daemon used to
// write: neither is touched, nor steers the write, nor blocks it.
TEST_F(LinuxHostFiles, PlantedFilesAndLinksNeitherRedirectNorBlockAStateFile) {
    const std::string state = dir + "/state", victim = dir + "/victim";
    { std::ofstream(victim) << "precious"; }
    ASSERT_EQ(0, symlink(victim.c_str(), (state + ".tmp").c_str()));
    ASSERT_TRUE(host.write_file(state.c_str(), "ath12\n", 6));
    EXPECT_EQ("ath12\n", read_all(state));
    EXPECT_EQ("precious", read_all(victim));
    struct stat st{};
    ASSERT_EQ(0, lstat((state + ".tmp").c_str(), &st));
    EXPECT_TRUE(S_ISLNK(st.st_mode));
    ASSERT_EQ(0, lstat(state.c_str(), &st));
    EXPECT_TRUE(S_ISREG(st.st_mode));
    EXPECT_EQ(0644u, st.st_mode & 0777u);

    // A link at the final name is replaced, not followed.
    ASSERT_EQ(0, std::remove(state.c_str()));
    ASSERT_EQ(0, symlink(victim.c_str(), state.c_str()));
    ASSERT_TRUE(host.write_file(state.c_str(), "ath02\n", 6));
    EXPECT_EQ("precious", read_all(victim));
    ASSERT_EQ(0, lstat(state.c_str(), &st));
    EXPECT_TRUE(S_ISREG(st.st_mode));
    EXPECT_EQ("ath02\n", read_all(state));

    // No temporary file is left behind.
    int entries = 0;
    for (const char* f : {"state", "state.tmp", "victim"})
        entries += access((dir + "/" + f).c_str(), F_OK) == 0 || lstat((dir + "/" + f).c_str(), &st) == 0;
    EXPECT_EQ(3, entries);
    EXPECT_FALSE(host.write_file((dir + "/no/such/dir").c_str(), "x", 1));
}

// Without a console the line reaches standard error, which procd logs.
TEST(LinuxHostConsole, AMissingConsoleFallsBackToStandardError) {
    char path[] = "/tmp/lynd_stderr_XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    int saved = dup(STDERR_FILENO);
    ASSERT_EQ(STDERR_FILENO, dup2(fd, STDERR_FILENO));
    {
        lynd::LinuxHost host("/nonexistent/console");
        host.console_write("<LYND_ERR>[x, 1] lost?\n", 23);
    }
    dup2(saved, STDERR_FILENO);
    close(saved);
    close(fd);
    EXPECT_EQ("<LYND_ERR>[x, 1] lost?\n", read_all(path));
    std::remove(path);
}

}  // namespace

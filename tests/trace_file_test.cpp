#include "full_disk.h"
#include "trace/trace_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "core/trace_name.h"
#include "file_text.h"
#include "temp_dir.h"
#include "trace/trace_line.h"
#include "trace/trace_place.h"

namespace {

const char kHeader[] = "{\"t\":5,\"k\":\"header\",\"lynd_trace\":2}\n";

class TraceFileTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_FALSE(dir.empty()); }
    void TearDown() override { lynd::trace_set_writer(nullptr); }

    int dir_fd() {
        const char* why = "";
        return lynd::trace_dir_open(dir.c_str(), true, &why);
    }
    int open(lynd::TraceFile& f, size_t limit) { return f.open(dir_fd(), dir.c_str(), "t", limit); }

    TempDir tmp;
    const std::string& dir = tmp.path;
    std::string path = dir + "/t";
};

TEST_F(TraceFileTest, AFullFileRotatesToItsSecondNameAndStartsAgain) {
    lynd::TraceFile f;
    ASSERT_EQ(0, open(f, 100));
    std::string line(40, 'a');
    line += '\n';
    f.append(line.data(), line.size());
    f.append(line.data(), line.size());
    EXPECT_FALSE(f.rotated());
    f.append(line.data(), line.size());  // 123 bytes would pass the limit
    EXPECT_TRUE(f.rotated());
    f.clear_rotated();
    f.append("b\n", 2);
    f.close();
    EXPECT_EQ(line + line, slurp(path + ".1"));
    EXPECT_EQ("b\n", slurp(path));
}

TEST_F(TraceFileTest, RotationNeverReplacesAFileThatIsNotATrace) {
    lynd::TraceFile f;
    ASSERT_EQ(0, open(f, 100));
    f.append(kHeader, sizeof kHeader - 1);
    std::ofstream(path + ".1") << "precious";  // planted after the open
    std::string line(90, 'a');
    line += '\n';
    f.append(line.data(), line.size());
    EXPECT_FALSE(f.is_open());
    EXPECT_EQ(EEXIST, f.failure());
    EXPECT_EQ("precious", slurp(path + ".1"));
    EXPECT_EQ(kHeader, slurp(path));
}

// What stands at the name, and whether a trace may replace it.
TEST_F(TraceFileTest, OnlyATraceOfThisDaemonIsReplaced) {
    struct Case {
        const char* what;
        void (*plant)(const std::string& path);
        int rc;
    };
    const Case cases[] = {
        {"nothing", [](const std::string&) {}, 0},
        {"a trace", [](const std::string& p) { std::ofstream(p) << kHeader; }, 0},
        {"a configuration", [](const std::string& p) { std::ofstream(p) << "{\"enable\": true}"; }, -EEXIST},
        {"an empty file", [](const std::string& p) { std::ofstream(p).flush(); }, -EEXIST},
        {"a directory", [](const std::string& p) { mkdir(p.c_str(), 0700); }, -EEXIST},
        {"a symlink to a trace", [](const std::string& p) {
             std::ofstream(p + ".x") << kHeader;
             (void)symlink((p + ".x").c_str(), p.c_str());
         }, -EEXIST},
        {"a dangling symlink", [](const std::string& p) { (void)symlink("/nonexistent/x", p.c_str()); }, -EEXIST},
    };
    for (const auto& c : cases) {
        TempDir d;
        std::string p = d.path + "/t";
        c.plant(p);
        struct stat before {};
        bool existed = lstat(p.c_str(), &before) == 0;
        const char* why = "";
        lynd::TraceFile f;
        int rc = f.open(lynd::trace_dir_open(d.path.c_str(), true, &why), d.path.c_str(), "t", 1000);
        EXPECT_EQ(c.rc, rc) << c.what;
        struct stat after {};
        if (rc != 0 && existed) {
            ASSERT_EQ(0, lstat(p.c_str(), &after)) << c.what;
            EXPECT_EQ(before.st_ino, after.st_ino) << c.what << ": left alone";
        }
        f.close();
        (void)unlink((p + ".x").c_str());
        (void)rmdir(p.c_str());
    }
}

TEST_F(TraceFileTest, ASecondNameThatIsNotATraceRefusesTheOpen) {
    std::ofstream(path + ".1") << "precious";
    lynd::TraceFile f;
    EXPECT_EQ(-EEXIST, open(f, 1000));
    // Unbounded (a desk trace) it never rotates, so NAME.1 does not matter.
    lynd::TraceFile g;
    EXPECT_EQ(0, open(g, SIZE_MAX));
    EXPECT_EQ("precious", slurp(path + ".1"));
}

TEST_F(TraceFileTest, TheDirectoryIsMadeForThisUserOnlyAndOneOfOthersIsRefused) {
    std::string mine = dir + "/lynd";
    const char* why = "";
    int fd = lynd::trace_dir_open(mine.c_str(), true, &why);
    ASSERT_GE(fd, 0) << why;
    close(fd);
    struct stat st {};
    ASSERT_EQ(0, lstat(mine.c_str(), &st));
    EXPECT_EQ(0700u, st.st_mode & 0777);

    ASSERT_EQ(0, chmod(mine.c_str(), 0777));
    EXPECT_EQ(-EPERM, lynd::trace_dir_open(mine.c_str(), true, &why));
    EXPECT_STREQ("is writable by other users", why);

    std::string link = dir + "/link";
    ASSERT_EQ(0, symlink(dir.c_str(), link.c_str()));
    EXPECT_LT(lynd::trace_dir_open(link.c_str(), true, &why), 0);
    EXPECT_STREQ("is not a directory", why);
}

// A full disk: the first write that fails ends the file, cut back to its
// last whole line.
TEST_F(TraceFileTest, AFullDiskEndsTheFileAtItsLastWholeLine) {
    lynd::TraceFile f;
    ASSERT_EQ(0, open(f, SIZE_MAX));
    f.append(kHeader, sizeof kHeader - 1);
    ASSERT_TRUE(f.flush());
    g_room = 10;
    lynd::trace_set_writer(fill_up);
    f.append("0123456789abcdef\n", 17);
    EXPECT_FALSE(f.flush());
    EXPECT_EQ(ENOSPC, f.failure());
    EXPECT_STREQ("write", f.failure_what());
    EXPECT_FALSE(f.is_open());
    f.append("more\n", 5);  // nothing happens
    f.close();
    EXPECT_EQ(kHeader, slurp(path));
}

TEST_F(TraceFileTest, AFileThatNeverHeldALineGoes) {
    lynd::TraceFile f;
    ASSERT_EQ(0, open(f, SIZE_MAX));
    g_room = 0;
    lynd::trace_set_writer(fill_up);
    f.append(kHeader, sizeof kHeader - 1);
    EXPECT_FALSE(f.flush());
    struct stat st {};
    EXPECT_NE(0, lstat(path.c_str(), &st));
}

TEST(TraceNameTest, OnlyAPlainNameIsTaken) {
    const char* const good[] = {"lynd.trace", "a", "x-1_2.TRACE", "a.b.c"};
    for (const char* n : good)
        EXPECT_STREQ("", trace_name_refusal(n)) << n;
    const char* const bad[] = {"",           "/etc/victim.conf", "../x", "a/b", "..", ".", ".hidden",
                               "a..b",       "x\n",              "x y",  "é",   "/tmp/lynd/x.trace",
                               "x\x7f"};
    for (const char* n : bad)
        EXPECT_STRNE("", trace_name_refusal(n)) << n;
    EXPECT_STRNE("", trace_name_refusal(std::string(65, 'a').c_str()));
    EXPECT_STREQ("", trace_name_refusal(std::string(64, 'a').c_str()));
}

TEST(TraceNameTest, OnlyATraceHeaderReadsAsOurs) {
    struct Case {
        const char* head;
        bool ours;
    };
    const Case cases[] = {
        {"{\"t\":0,\"k\":\"header\",\"lynd_trace\":2,", true},
        {"{\"t\":-12,\"k\":\"header\",\"lynd_trace\":", true},
        {"{\"t\":40000,\"k\":\"header\",\"lynd_trace\":2", true},
        {"{\"t\":,\"k\":\"header\",\"lynd_trace\":2", false},
        {"{\"t\":1,\"k\":\"log\",\"line\":\"x\"}", false},
        {"{\"t\":1,\"k\":\"header\",\"lynd_trac", false},
        {"root:x:0:0:root:/root:/bin/sh", false},
        {"", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.ours, trace_head_is_ours(c.head, std::strlen(c.head))) << c.head;
}

TEST(TraceRoomTest, TwoFilesMustLeaveTheMarginAndAQuarterFree) {
    constexpr uint64_t MiB = 1024 * 1024;
    struct Case {
        uint64_t avail, total;
        size_t size;
        bool enough;
    };
    const Case cases[] = {
        {64 * MiB, 64 * MiB, 8 * MiB, true},     // 48 left of 64: a quarter is 16
        {30 * MiB, 64 * MiB, 8 * MiB, false},    // 14 left
        {32 * MiB, 64 * MiB, 8 * MiB, true},     // 16 left, just
        {5 * MiB, 8 * MiB, 1 * MiB, false},      // 3 left: under the margin of 4
        {6 * MiB, 8 * MiB, 1 * MiB, true},       // 4 left: the margin, as a quarter is 2
        {1 * MiB, 64 * MiB, 8 * MiB, false},     // less than the files
        {0, 0, 16384, false},
    };
    for (const auto& c : cases) {
        lynd::FsSpace fs;
        fs.avail = c.avail;
        fs.total = c.total;
        EXPECT_EQ(c.enough, lynd::trace_room_enough(fs, c.size)) << c.avail << " of " << c.total << " for " << c.size;
    }
}

TEST(TraceLineTest, TextThatIsNotPlainGoesAsHexAndQuotesAreEscaped) {
    static lynd::TraceLine l;
    l.begin(7, "read");
    l.text("data", "a\"b\n", 4);
    l.text("raw", "\x80\x01\0\0\0\0\0\x02", 8);
    l.end();
    EXPECT_EQ("{\"t\":7,\"k\":\"read\",\"data\":\"a\\\"b\\n\",\"raw_x\":\"8001z5.02\"}\n",
              std::string(l.data(), l.size()));
}

TEST(TraceLineTest, ALineWithoutABufferTakesNothingAndIsCut) {
    lynd::TraceLine none(0);
    EXPECT_TRUE(none.has_buffer());
    none.begin(1, "log");
    none.text("line", "x", 1);
    none.hex("h", "ab", 2);
    none.end();
    EXPECT_FALSE(none.ok());
    EXPECT_EQ(0u, none.size());
}

}  // namespace

#include "trace/trace_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "file_text.h"
#include "temp_dir.h"
#include "trace/trace_line.h"

namespace {

class TraceFileTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_FALSE(dir.empty()); }
    TempDir tmp;
    const std::string& dir = tmp.path;
    std::string path = dir + "/t";
};

TEST_F(TraceFileTest, AFullFileRotatesToItsSecondNameAndStartsAgain) {
    lynd::TraceFile f;
    ASSERT_EQ(0, f.open(path.c_str(), 100));
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

TEST_F(TraceFileTest, APlantedSymlinkIsReplacedNotFollowed) {
    std::string target = dir + "/target";
    std::ofstream(target) << "precious";
    ASSERT_EQ(0, symlink(target.c_str(), path.c_str()));
    lynd::TraceFile f;
    ASSERT_EQ(0, f.open(path.c_str(), 0));
    f.append("x\n", 2);
    f.close();
    EXPECT_EQ("precious", slurp(target));
    struct stat st;
    ASSERT_EQ(0, lstat(path.c_str(), &st));
    EXPECT_TRUE(S_ISREG(st.st_mode));
    EXPECT_EQ(0600u, st.st_mode & 0777);
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

}  // namespace

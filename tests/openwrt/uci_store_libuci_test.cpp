// The UCI seam against the real libuci: a failed lookup costs one line on
// standard error and nothing else, however often it happens.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "targets/openwrt/uci_store_libuci.h"

namespace {

long rss_kib() {
    std::FILE* f = std::fopen("/proc/self/status", "r");
    if (f == nullptr)
        return -1;
    char line[256];
    long kib = -1;
    while (std::fgets(line, sizeof line, f) != nullptr)
        if (std::sscanf(line, "VmRSS: %ld kB", &kib) == 1)
            break;
    std::fclose(f);
    return kib;
}

// Standard error goes to a fresh file while the object lives.
class StderrCapture {
public:
    StderrCapture() {
        char dir_tmpl[] = "/tmp/lynd-uci-XXXXXX";
        dir_ = mkdtemp(dir_tmpl) != nullptr ? dir_tmpl : "";
        path_ = dir_ + "/stderr";
        fd_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        std::fflush(stderr);
        saved_ = ::dup(STDERR_FILENO);
        (void)::dup2(fd_, STDERR_FILENO);
    }
    ~StderrCapture() {
        restore();
        ::close(fd_);
        ::unlink(path_.c_str());
        ::rmdir(dir_.c_str());
    }
    void restore() {
        if (saved_ < 0)
            return;
        std::fflush(stderr);
        (void)::dup2(saved_, STDERR_FILENO);
        ::close(saved_);
        saved_ = -1;
    }
    std::string text() const {
        std::string s;
        char buf[65536];
        ssize_t n;
        off_t at = 0;
        while ((n = ::pread(fd_, buf, sizeof buf, at)) > 0) {
            s.append(buf, static_cast<size_t>(n));
            at += n;
        }
        return s;
    }
    size_t size() const {
        struct stat st;
        return ::fstat(fd_, &st) == 0 ? static_cast<size_t>(st.st_size) : 0;
    }
    bool ok() const { return fd_ >= 0; }

private:
    std::string dir_, path_;
    int fd_ = -1;
    int saved_ = -1;
};

size_t count_lines_starting(const std::string& text, const std::string& prefix, size_t* total) {
    size_t matching = 0;
    *total = 0;
    for (size_t at = 0; at < text.size();) {
        size_t nl = text.find('\n', at);
        if (nl == std::string::npos)
            nl = text.size();
        ++*total;
        if (text.compare(at, prefix.size(), prefix) == 0)
            matching++;
        at = nl + 1;
    }
    return matching;
}

TEST(LibUciStoreTest, EachFailedLookupIsOneLineAndCostsNoMemory) {
    lynd::LibUciStore uci;
    auto lookup = [&] {
        char path[] = "lyndnosuchpackage.section.option";
        char value[32] = {};
        return uci.get(path, value, sizeof value);
    };
    StderrCapture capture;
    ASSERT_TRUE(capture.ok());
    for (int i = 0; i < 2000; i++)  // the heap settles after the first contexts
        (void)lookup();
    size_t warmup_bytes = capture.size();
    long before = rss_kib();
    int failed = 0;
    for (int i = 0; i < 1000; i++)
        failed += lookup() == lynd::UciResult::LOOKUP_FAILED;
    long after = rss_kib();
    capture.restore();

    EXPECT_EQ(1000, failed);
    std::string text = capture.text().substr(warmup_bytes);
    size_t total = 0;
    EXPECT_EQ(1000u, count_lines_starting(text, "lookup ptr: ", &total));
    EXPECT_EQ(1000u, total);
    // A growing buffer would show as ever longer lines: all are alike.
    EXPECT_EQ(text.size(), 1000 * (text.find('\n') + 1));
    ASSERT_GT(before, 0);
    // Page-grain noise passes; a leak of 200 bytes a lookup would not.
    EXPECT_LE(after - before, 128) << "RSS grew from " << before << " KiB to " << after << " KiB";
}

}  // namespace

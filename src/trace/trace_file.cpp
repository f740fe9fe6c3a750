#include "trace/trace_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace lynd {

int trace_create(const char* path) {
    // Removing first and then creating exclusively: whatever stood at the
    // name (a symlink someone planted in /tmp) is never written through.
    if (::unlink(path) != 0 && errno != ENOENT)
        return -errno;
    int fd = ::open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    return fd >= 0 ? fd : -errno;
}

int TraceFile::open(const char* path, size_t size_limit) {
    close();
    size_t n = std::strlen(path);
    if (n == 0 || n >= sizeof path_ - 2)
        return -ENAMETOOLONG;
    std::memcpy(path_, path, n + 1);
    limit_ = size_limit > 0 ? size_limit : TRACE_DEFAULT_SIZE;
    int fd = trace_create(path_);
    if (fd < 0)
        return fd;
    fd_ = fd;
    used_ = 0;
    written_ = 0;
    rotated_ = false;
    return 0;
}

bool TraceFile::write_all(const char* p, size_t n) {
    while (n > 0) {
        ssize_t w = ::write(fd_, p, n);
        if (w < 0 && errno == EINTR)
            continue;
        if (w <= 0)
            return false;
        p += w;
        n -= static_cast<size_t>(w);
    }
    return true;
}

bool TraceFile::flush() {
    if (fd_ < 0 || used_ == 0)
        return fd_ >= 0;
    bool ok = write_all(buf_, used_);
    used_ = 0;
    return ok;
}

void TraceFile::maybe_flush(int64_t now_ms) {
    if (used_ > kBuffer / 2 || now_ms - flushed_ms_ >= 1000) {
        (void)flush();
        flushed_ms_ = now_ms;
    }
}

// The full file becomes FILE.1 (an older FILE.1 goes); FILE starts again.
void TraceFile::rotate() {
    (void)flush();
    ::close(fd_);
    fd_ = -1;
    char old[TRACE_PATH_MAX + 2];
    std::snprintf(old, sizeof old, "%s.1", path_);
    if (::rename(path_, old) != 0)
        return;
    int fd = trace_create(path_);
    if (fd < 0)
        return;
    fd_ = fd;
    written_ = 0;
    rotated_ = true;
}

void TraceFile::append(const char* line, size_t len) {
    if (fd_ < 0)
        return;
    if (written_ > 0 && written_ + len > limit_) {
        rotate();
        if (fd_ < 0 || rotated_)
            return;  // the caller writes the new file's header, then the line again
    }
    written_ += len;
    if (len > kBuffer - used_) {
        (void)flush();
        if (len > kBuffer) {
            (void)write_all(line, len);
            return;
        }
    }
    std::memcpy(buf_ + used_, line, len);
    used_ += len;
}

void TraceFile::close() {
    if (fd_ < 0)
        return;
    (void)flush();
    ::close(fd_);
    fd_ = -1;
}

}  // namespace lynd

#include "trace/trace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "core/trace_name.h"

namespace lynd {

namespace {

TraceWriteFn g_write = ::write;

int fail_dir(int fd, int error, const char** why, const char* what) {
    if (fd >= 0)
        ::close(fd);
    *why = what;
    return -error;
}

}  // namespace

void trace_set_writer(TraceWriteFn fn) { g_write = fn != nullptr ? fn : ::write; }

int trace_dir_open(const char* dir, bool strict, const char** why) {
    *why = "";
    if (strict && ::mkdir(dir, 0700) != 0 && errno != EEXIST)
        return fail_dir(-1, errno, why, "cannot be made");
    int fd = ::open(dir, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return fail_dir(-1, errno, why, errno == ELOOP || errno == ENOTDIR ? "is not a directory" : "cannot be opened");
    struct stat st {};
    if (::fstat(fd, &st) != 0)
        return fail_dir(fd, errno, why, "cannot be looked at");
    if (strict && st.st_uid != ::geteuid())
        return fail_dir(fd, EPERM, why, "belongs to another user");
    if (strict && (st.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return fail_dir(fd, EPERM, why, "is writable by other users");
    return fd;
}

TraceSlot trace_slot(int dirfd, const char* name) {
    int fd = ::openat(dirfd, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return errno == ENOENT ? TraceSlot::FREE : TraceSlot::FOREIGN;
    struct stat st {};
    char head[64];
    ssize_t n = -1;
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_uid == ::geteuid())
        n = ::read(fd, head, sizeof head);
    ::close(fd);
    return n > 0 && trace_head_is_ours(head, static_cast<size_t>(n)) ? TraceSlot::OURS : TraceSlot::FOREIGN;
}

namespace {

// Whatever stood at name was a trace of ours: removed, so the new file is
// made exclusively and a link planted since is never written through.
int create_at(int dirfd, const char* name) {
    if (::unlinkat(dirfd, name, 0) != 0 && errno != ENOENT)
        return -errno;
    int fd = ::openat(dirfd, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    return fd >= 0 ? fd : -errno;
}

bool rotated_name(char (&out)[TRACE_PATH_MAX], const char* name) {
    size_t n = std::strlen(name);
    if (n + sizeof ".1" > sizeof out)
        return false;
    std::memcpy(out, name, n);
    std::memcpy(out + n, ".1", sizeof ".1");
    return true;
}

}  // namespace

int TraceFile::open(int dirfd, const char* dir, const char* name, size_t size_limit) {
    close();
    char old[TRACE_PATH_MAX];
    int n = std::snprintf(path_, sizeof path_, "%s/%s", dir, name);
    if (n <= 0 || static_cast<size_t>(n) >= sizeof path_ || !rotated_name(old, name)) {
        ::close(dirfd);
        path_[0] = '\0';
        return -ENAMETOOLONG;
    }
    std::snprintf(name_, sizeof name_, "%s", name);
    limit_ = size_limit > 0 ? size_limit : TRACE_DEFAULT_SIZE;
    bool may_rotate = limit_ != SIZE_MAX;
    if (trace_slot(dirfd, name_) == TraceSlot::FOREIGN || (may_rotate && trace_slot(dirfd, old) == TraceSlot::FOREIGN)) {
        ::close(dirfd);
        return -EEXIST;
    }
    int fd = create_at(dirfd, name_);
    if (fd < 0) {
        ::close(dirfd);
        return fd;
    }
    dirfd_ = dirfd;
    fd_ = fd;
    used_ = 0;
    written_ = 0;
    on_disk_ = 0;
    rotated_ = false;
    failure_ = 0;
    failure_what_ = "";
    return 0;
}

void TraceFile::fail(int error, const char* what) {
    failure_ = error != 0 ? error : EIO;
    failure_what_ = what;
    used_ = 0;
    if (fd_ >= 0) {
        // Back to the last whole line; a file never written to goes, as no
        // header would say whose it is.
        if (on_disk_ == 0)
            (void)::unlinkat(dirfd_, name_, 0);
        else
            (void)::ftruncate(fd_, static_cast<off_t>(on_disk_));
        ::close(fd_);
        fd_ = -1;
    }
}

bool TraceFile::write_all(const char* p, size_t n) {
    const char* start = p;
    while (n > 0) {
        ssize_t w = g_write(fd_, p, n);
        if (w < 0 && errno == EINTR)
            continue;
        if (w <= 0) {
            int error = w == 0 ? ENOSPC : errno;
            // Of the part that went out, the lines that did whole stay.
            const void* nl = nullptr;
            for (size_t k = static_cast<size_t>(p - start); k > 0 && nl == nullptr; k--)
                nl = start[k - 1] == '\n' ? start + k - 1 : nullptr;
            if (nl != nullptr)
                on_disk_ += static_cast<size_t>(static_cast<const char*>(nl) - start) + 1;
            fail(error, "write");
            return false;
        }
        p += w;
        n -= static_cast<size_t>(w);
    }
    on_disk_ += static_cast<size_t>(p - start);
    return true;
}

bool TraceFile::flush() {
    if (fd_ < 0)
        return false;
    if (used_ == 0)
        return true;
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

// The full file becomes NAME.1 (an older one of ours goes); NAME starts again.
void TraceFile::rotate() {
    if (!flush())
        return;
    char old[TRACE_PATH_MAX];
    (void)rotated_name(old, name_);
    if (trace_slot(dirfd_, old) == TraceSlot::FOREIGN)
        return fail(EEXIST, "rotation: the older file's name is taken by a file not of this daemon");
    ::close(fd_);
    fd_ = -1;
    if (::renameat(dirfd_, name_, dirfd_, old) != 0)
        return fail(errno, "rotation");
    int fd = create_at(dirfd_, name_);
    if (fd < 0)
        return fail(-fd, "rotation");
    fd_ = fd;
    written_ = 0;
    on_disk_ = 0;
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
        if (!flush())
            return;
        if (len > kBuffer) {
            (void)write_all(line, len);
            return;
        }
    }
    std::memcpy(buf_ + used_, line, len);
    used_ += len;
}

void TraceFile::append_header(const char* line, size_t len) {
    size_t before = written_;
    append(line, len);
    written_ = before;
}

void TraceFile::close() {
    if (fd_ >= 0) {
        (void)flush();
        if (fd_ >= 0)
            ::close(fd_);
        fd_ = -1;
    }
    if (dirfd_ >= 0)
        ::close(dirfd_);
    dirfd_ = -1;
}

}  // namespace lynd

#include "trace/trace_place.h"

#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "core/trace_name.h"
#include "trace/trace_file.h"

namespace lynd {

namespace {

int refuse(int fd, int error, char* why, size_t why_len, const char* format, ...)
    __attribute__((format(printf, 5, 6)));

int refuse(int fd, int error, char* why, size_t why_len, const char* format, ...) {
    if (fd >= 0)
        ::close(fd);
    va_list ap;
    va_start(ap, format);
    std::vsnprintf(why, why_len, format, ap);
    va_end(ap);
    return -error;
}

}  // namespace

bool trace_room_enough(const FsSpace& fs, size_t size) {
    uint64_t need = 2 * static_cast<uint64_t>(size);
    uint64_t margin = fs.total / 4 > TRACE_ROOM_MARGIN ? fs.total / 4 : TRACE_ROOM_MARGIN;
    return fs.avail >= need && fs.avail - need >= margin;
}

int trace_place_name(const char* dir, const char* name, size_t size, char* why, size_t why_len) {
    const char* bad = trace_name_refusal(name);
    if (bad[0] != '\0')
        return refuse(-1, EINVAL, why, why_len, "%s; a trace is a file name in the trace directory", bad);
    if (size > TRACE_SIZE_MAX)
        return refuse(-1, EFBIG, why, why_len, "size %zu is over the cap of %zu bytes per file", size, TRACE_SIZE_MAX);
    if (dir == nullptr || dir[0] == '\0')
        return refuse(-1, ENOENT, why, why_len, "no trace directory");
    return 0;
}

int trace_place_dir(const char* dir, const char* name, size_t size, bool strict, char* why, size_t why_len) {
    const char* bad = "";
    int fd = trace_dir_open(dir, strict, &bad);
    if (fd < 0)
        return refuse(-1, -fd, why, why_len, "the directory %s %s: %s", dir, bad, std::strerror(-fd));
    char old[TRACE_PATH_MAX];
    std::snprintf(old, sizeof old, "%s.1", name);
    if (trace_slot(fd, name) == TraceSlot::FOREIGN || (size != SIZE_MAX && trace_slot(fd, old) == TraceSlot::FOREIGN))
        return refuse(fd, EEXIST, why, why_len, "%s exists and is not a trace of this daemon: left alone", name);
    return fd;
}

int trace_place_room(Host& host, const char* dir, size_t size, char* why, size_t why_len) {
    FsSpace fs;
    int rc = host.fs_space(dir, &fs);
    if (rc < 0)
        return refuse(-1, -rc, why, why_len, "the room left for traces cannot be told: %s", std::strerror(-rc));
    if (!trace_room_enough(fs, size))
        return refuse(-1, ENOSPC, why, why_len,
                      "two files of %zu bytes would leave too little room for the rest (%llu bytes free of %llu)",
                      size, static_cast<unsigned long long>(fs.avail), static_cast<unsigned long long>(fs.total));
    return 0;
}

int trace_place_open(const char* dir, const char* name, size_t size, bool strict, Host& host, char* why,
                     size_t why_len) {
    int rc = strict ? trace_place_name(dir, name, size, why, why_len) : 0;
    if (rc < 0)
        return rc;
    int fd = trace_place_dir(dir, name, size, strict, why, why_len);
    if (fd < 0 || !strict)
        return fd;
    rc = trace_place_room(host, dir, size, why, why_len);
    if (rc < 0)
        ::close(fd);
    return rc < 0 ? rc : fd;
}

}  // namespace lynd

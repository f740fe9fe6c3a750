// A trace writer over a filesystem with little room left: it takes what fits,
// then fails with ENOSPC, as a full /tmp does.
#pragma once
#include <unistd.h>

#include <cerrno>
#include <cstddef>

inline size_t g_room = 0;

inline ssize_t fill_up(int fd, const void* p, size_t n) {
    if (g_room == 0) {
        errno = ENOSPC;
        return -1;
    }
    size_t k = n < g_room ? n : g_room;
    g_room -= k;
    return write(fd, p, k);
}

// A replay run in a child process of its own, so that a replay that never
// ends, dies or grows without bound is one result: how it ended, its peak
// memory and its report.
#pragma once
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "sim/desk/replay_run.h"

struct ReplayChild {
    bool exited = false;  // by itself, not by a signal (the time limit, a fault)
    int status = -1;
    long max_rss_kb = 0;
    std::string report;
};

// The exit status lynd-sim replay gives: 0 identical, 1 a difference, 2 a
// trace it refused.
inline int replay_child_status(const lynd::ReplayResult& r) {
    if (!r.identical && r.exit_status == 2)
        return 2;
    return r.identical ? 0 : 1;
}

inline int g_replay_child_fd = -1;

inline void replay_child_report(const lynd::ReplayResult& r) {
    size_t off = 0;
    while (off < r.report.size()) {
        ssize_t n = write(g_replay_child_fd, r.report.data() + off, r.report.size() - off);
        if (n <= 0)
            break;
        off += static_cast<size_t>(n);
    }
}

inline ReplayChild replay_in_child(const std::function<lynd::ReplayResult()>& body, unsigned seconds) {
    ReplayChild c;
    int fds[2];
    if (pipe(fds) != 0)
        return c;
    pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        g_replay_child_fd = fds[1];
        alarm(seconds);
        lynd::ReplayResult r = body();
        replay_child_report(r);
        _exit(replay_child_status(r));
    }
    close(fds[1]);
    char buf[4096];
    ssize_t n = 0;
    while (pid > 0 && (n = read(fds[0], buf, sizeof buf)) > 0)
        c.report.append(buf, static_cast<size_t>(n));
    close(fds[0]);
    int status = 0;
    rusage ru{};
    if (pid > 0 && wait4(pid, &status, 0, &ru) == pid) {
        c.exited = WIFEXITED(status);
        c.status = c.exited ? WEXITSTATUS(status) : -WTERMSIG(status);
        c.max_rss_kb = ru.ru_maxrss;
    }
    return c;
}

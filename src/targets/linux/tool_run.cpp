#include "targets/linux/tool_run.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>

#include "platform/host.h"

namespace lynd {

namespace {

// After SIGKILL a child in an uninterruptible sleep may take a while to go;
// it is not waited for past this, but reaped at a later run.
constexpr int kReapAfterKillMs = 100;
constexpr long kFirstGapUs = 50;
constexpr long kMaxGapUs = 20000;
constexpr int kMaxUnreaped = 8;

pid_t g_unreaped[kMaxUnreaped];

int64_t now_ms() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<int64_t>(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}

void reap_leftovers() {
    for (pid_t& p : g_unreaped) {
        if (p > 0 && ::waitpid(p, nullptr, WNOHANG) != 0)
            p = 0;
    }
}

void leave_unreaped(pid_t pid) {
    for (pid_t& p : g_unreaped) {
        if (p <= 0) {
            p = pid;
            return;
        }
    }
}

// Sleeps at most left_ms, never longer than gap_us.
void nap(int64_t left_ms, long gap_us) {
    long us = left_ms * 1000 < gap_us ? static_cast<long>(left_ms * 1000) : gap_us;
    timespec ts{us / 1000000, (us % 1000000) * 1000};
    (void)nanosleep(&ts, nullptr);
}

// 1: reaped (status set); 0: still running at the deadline; -1: not ours.
// Most tools end within a millisecond or two: the gaps between looks start
// short and grow.
int wait_until(pid_t pid, int64_t deadline, int* status) {
    for (long gap = kFirstGapUs;; gap = gap * 2 < kMaxGapUs ? gap * 2 : kMaxGapUs) {
        pid_t r = ::waitpid(pid, status, WNOHANG);
        if (r == pid)
            return 1;
        if (r < 0 && errno != EINTR)
            return -1;
        int64_t left = deadline - now_ms();
        if (left <= 0)
            return 0;
        nap(left, gap);
    }
}

// The whole process group goes: a tool may have started children of its own.
int kill_and_reap(pid_t pid) {
    (void)::kill(-pid, SIGKILL);
    (void)::kill(pid, SIGKILL);
    int status = 0;
    if (wait_until(pid, now_ms() + kReapAfterKillMs, &status) == 0)
        leave_unreaped(pid);
    return TOOL_TIMED_OUT;
}

int finish(pid_t pid, int64_t deadline) {
    int status = 0;
    switch (wait_until(pid, deadline, &status)) {
    case 1:
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    case 0:
        return kill_and_reap(pid);
    default:
        return -1;
    }
}

// Reads until end of file, a full buffer or the deadline; false at the deadline.
bool read_until(int fd, char* out, size_t size, int64_t deadline, size_t* got) {
    while (*got < size) {
        int64_t left = deadline - now_ms();
        if (left <= 0)
            return false;
        pollfd p{fd, POLLIN, 0};
        int r = ::poll(&p, 1, static_cast<int>(left));
        if (r == 0)
            return false;
        if (r < 0) {
            if (errno == EINTR)
                continue;
            return true;
        }
        ssize_t n = ::read(fd, out + *got, size - *got);
        if (n > 0)
            *got += static_cast<size_t>(n);
        else if (n == 0 || errno != EINTR)
            return true;
    }
    return true;
}

}  // namespace

int tool_wait(pid_t pid, int timeout_ms) { return finish(pid, now_ms() + timeout_ms); }

// Output past size is not read: the pipe is closed and a tool that goes on
// writing dies of SIGPIPE, or at the deadline.
int tool_run_capture(const char* const argv[], char* out, size_t size, int timeout_ms) {
    int64_t deadline = now_ms() + timeout_ms;
    reap_leftovers();
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0)
        return -1;
    pid_t pid = tool_spawn(argv, fds[1]);
    ::close(fds[1]);
    if (pid < 0) {
        ::close(fds[0]);
        return -1;
    }
    size_t got = 0;
    bool in_time = read_until(fds[0], out, size, deadline, &got);
    ::close(fds[0]);
    if (!in_time)
        return kill_and_reap(pid);
    if (finish(pid, deadline) == TOOL_TIMED_OUT)
        return TOOL_TIMED_OUT;
    return static_cast<int>(got);
}

int tool_run_status(const char* const argv[], int timeout_ms) {
    int64_t deadline = now_ms() + timeout_ms;
    reap_leftovers();
    pid_t pid = tool_spawn(argv, -1);
    return pid < 0 ? -1 : finish(pid, deadline);
}

}  // namespace lynd

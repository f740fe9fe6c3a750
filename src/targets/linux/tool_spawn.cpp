#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "targets/linux/tool_run.h"

extern char** environ;

namespace lynd {

namespace {

// The search list when the daemon was started without one.
constexpr const char* kDefaultPath = "/usr/sbin:/usr/bin:/sbin:/bin";

bool is_executable_file(const char* path) {
    struct stat st;
    return ::stat(path, &st) == 0 && S_ISREG(st.st_mode) && ::access(path, X_OK) == 0;
}

// The file to exec: name itself when it holds a slash, else the first
// executable regular file of that name on PATH (an empty entry, the current
// directory, is skipped). Found before the child exists, which may only make
// system calls; no fallback to a shell for a file without a format.
bool tool_path(const char* name, char* path, size_t size) {
    size_t name_len = std::strlen(name);
    if (name_len == 0 || name_len >= size)
        return false;
    if (std::strchr(name, '/') != nullptr) {
        std::memcpy(path, name, name_len + 1);
        return true;
    }
    const char* dirs = std::getenv("PATH");
    if (dirs == nullptr || *dirs == '\0')
        dirs = kDefaultPath;
    for (const char* d = dirs;;) {
        const char* end = std::strchr(d, ':');
        size_t len = end != nullptr ? static_cast<size_t>(end - d) : std::strlen(d);
        if (len > 0 && len + 1 + name_len < size) {
            std::memcpy(path, d, len);
            path[len] = '/';
            std::memcpy(path + len + 1, name, name_len + 1);
            if (is_executable_file(path))
                return true;
        }
        if (end == nullptr)
            return false;
        d = end + 1;
    }
}

// The child's half, while it still shares the daemon's memory: system calls
// only, no return. Every signal the daemon ignores or catches goes back to
// its default (a tool writing into a closed pipe must die of SIGPIPE), the
// mask opens only just before exec, and on failure the reason goes through
// report, which a successful exec closes unwritten.
[[noreturn]] void exec_child(const char* path, const char* const argv[], int out_fd, int report) {
    struct sigaction dfl;
    std::memset(&dfl, 0, sizeof dfl);
    dfl.sa_handler = SIG_DFL;
    for (int sig = 1; sig < _NSIG; sig++) {
        if (sig != SIGKILL && sig != SIGSTOP)
            (void)::sigaction(sig, &dfl, nullptr);
    }
    (void)::setpgid(0, 0);
    sigset_t none;
    sigemptyset(&none);
    // A pipe that landed on descriptor 1 itself only loses close-on-exec.
    bool out_ok = out_fd < 0 || (out_fd == STDOUT_FILENO ? ::fcntl(out_fd, F_SETFD, 0) == 0
                                                          : ::dup2(out_fd, STDOUT_FILENO) >= 0);
    if (out_ok && ::sigprocmask(SIG_SETMASK, &none, nullptr) == 0)
        ::execve(path, const_cast<char* const*>(argv), environ);
    int err = errno;
    ssize_t ignored = ::write(report, &err, sizeof err);
    (void)ignored;
    ::_exit(127);
}

// True when the child wrote why its exec failed. With a real vfork the
// child has exec'd or exited already; where an emulator turns vfork into a
// fork this waits for the exec.
bool exec_failed(int report) {
    int err = 0;
    ssize_t n;
    do
        n = ::read(report, &err, sizeof err);
    while (n < 0 && errno == EINTR);
    return n != 0;
}

void reap_failed(pid_t pid) {
    while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
    }
}

}  // namespace

// Every descriptor the daemon holds is close-on-exec, so the tool gets only
// its standard streams. Signals stay blocked in the daemon from vfork until
// the child is gone from its memory: no handler of the daemon may run on the
// shared stack.
pid_t tool_spawn(const char* const argv[], int out_fd) {
    char path[PATH_MAX];
    if (argv == nullptr || argv[0] == nullptr || !tool_path(argv[0], path, sizeof path))
        return -1;
    int report[2];
    if (::pipe2(report, O_CLOEXEC) != 0)
        return -1;
    sigset_t all, old;
    sigfillset(&all);
    (void)::sigprocmask(SIG_SETMASK, &all, &old);
    pid_t pid = ::vfork();
    if (pid == 0)
        exec_child(path, argv, out_fd, report[1]);
    (void)::sigprocmask(SIG_SETMASK, &old, nullptr);
    ::close(report[1]);
    if (pid > 0) {
        // Where vfork is a fork the child may not have made its group yet.
        (void)::setpgid(pid, pid);
        if (exec_failed(report[0])) {
            reap_failed(pid);
            pid = -1;
        }
    }
    ::close(report[0]);
    return pid;
}

}  // namespace lynd

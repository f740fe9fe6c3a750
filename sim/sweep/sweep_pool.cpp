#include "sim/sweep/sweep_pool.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <vector>

namespace lynd {

namespace {

// A virtual hour takes well under a second; a child still busy after this
// is stuck.
constexpr unsigned kChildTimeLimitS = 300;

struct Child {
    pid_t pid;
    int fd;
    size_t index;
    std::string text;
};

bool write_all(int fd, const std::string& s) {
    size_t done = 0;
    while (done < s.size()) {
        ssize_t n = write(fd, s.data() + done, s.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<size_t>(n);
    }
    return true;
}

bool start(size_t i, const std::function<std::string(size_t)>& body, std::vector<Child>* running) {
    int fds[2];
    if (pipe(fds) != 0)
        return false;
    std::fflush(stdout);
    std::fflush(stderr);
    pid_t pid = fork();
    if (pid == 0) {
        close(fds[0]);
        alarm(kChildTimeLimitS);
        std::string text = body(i);
        _exit(write_all(fds[1], text) ? 0 : 1);
    }
    close(fds[1]);
    if (pid < 0) {
        close(fds[0]);
        return false;
    }
    running->push_back(Child{pid, fds[0], i, ""});
    return true;
}

// Reads what is there; true when the child's pipe is closed.
bool drain(Child* c) {
    char buf[4096];
    ssize_t n = read(c->fd, buf, sizeof buf);
    if (n < 0 && errno == EINTR)
        return false;
    if (n > 0) {
        c->text.append(buf, static_cast<size_t>(n));
        return false;
    }
    return true;
}

}  // namespace

void sweep_pool(size_t n, int jobs, const std::function<std::string(size_t)>& body,
                const std::function<void(size_t, const std::string&)>& done) {
    std::vector<Child> running;
    size_t next = 0;
    while (next < n || !running.empty()) {
        while (next < n && static_cast<int>(running.size()) < (jobs < 1 ? 1 : jobs)) {
            if (!start(next, body, &running))
                done(next, "");
            next++;
        }
        std::vector<pollfd> fds;
        for (const auto& c : running)
            fds.push_back(pollfd{c.fd, POLLIN, 0});
        if (poll(fds.data(), fds.size(), -1) < 0 && errno != EINTR)
            break;
        for (size_t k = running.size(); k-- > 0;) {
            if (fds[k].revents == 0 || !drain(&running[k]))
                continue;
            close(running[k].fd);
            int status = 0;
            (void)waitpid(running[k].pid, &status, 0);
            bool ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
            done(running[k].index, ok ? running[k].text : "");
            running.erase(running.begin() + static_cast<long>(k));
        }
    }
}

}  // namespace lynd

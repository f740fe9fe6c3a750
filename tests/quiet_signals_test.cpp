// A real process: the signals that would kill the daemon without its
// tear-down do nothing, and the tools it starts still get the defaults.
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include <gtest/gtest.h>

#include "targets/linux/quiet_signals.h"

namespace {

int status_of(pid_t child) {
    int status = -1;
    while (waitpid(child, &status, 0) < 0) {
    }
    return status;
}

TEST(QuietSignals, HangupAndUserSignalsLeaveTheProcessRunning) {
    pid_t child = fork();
    if (child == 0) {
        lynd_quiet_signals();
        for (int sig : {SIGHUP, SIGUSR1, SIGUSR2, SIGHUP})
            raise(sig);
        _exit(7);
    }
    int status = status_of(child);
    ASSERT_TRUE(WIFEXITED(status)) << "killed by signal " << (WIFSIGNALED(status) ? WTERMSIG(status) : 0);
    EXPECT_EQ(7, WEXITSTATUS(status));
}

// A handler, not an ignored signal: exec puts the default back.
TEST(QuietSignals, AToolStartedAfterwardsGetsTheDefaults) {
    pid_t child = fork();
    if (child == 0) {
        lynd_quiet_signals();
        execl("/bin/sh", "sh", "-c", "kill -USR1 $$; exit 0", static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = status_of(child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(SIGUSR1, WTERMSIG(status));
}

}  // namespace

#include "targets/linux/quiet_signals.h"

#include <csignal>
#include <initializer_list>

namespace {

void on_quiet_signal(int) {}

}  // namespace

void lynd_quiet_signals() {
    struct sigaction sa {};
    sa.sa_handler = on_quiet_signal;
    sa.sa_flags = SA_RESTART;
    sigemptyset(&sa.sa_mask);
    for (int sig : {SIGHUP, SIGUSR1, SIGUSR2})
        (void)sigaction(sig, &sa, nullptr);
}

// Signals whose default action would end the daemon without its tear-down
// (the bridge left programmed, dual band left off).
#pragma once

// SIGHUP, SIGUSR1 and SIGUSR2 are caught and do nothing: the daemon runs
// on. A reload goes through the init script, which checks the file first.
// A handler, not SIG_IGN, so that tools started later get the defaults.
void lynd_quiet_signals();

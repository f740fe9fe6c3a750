// The daemon's runs in one process. A run asked to restart ends its loop
// once the handler that asked has returned (its bus reply is on its way),
// tears down as on SIGTERM and starts again from the configuration file: the
// bus method's trace begins at a start of the daemon, as a boot trace does.
#pragma once

// lynd_main, again while the run that ended asked for a restart.
int lynd_run(int argc, char** argv);

// A run's wish to start again: asked by the record method, read where the
// run ends. A run starts with none asked for (a replay runs lynd_main alone).
#pragma once

// Ends the running loop; lynd_run starts the daemon again.
void lynd_restart_request();
bool lynd_restart_requested();
void lynd_restart_reset();
// Set while a run follows another in the process (or replays one that
// did): its configuration file may fall back to the running one.
void lynd_set_restarting(bool restarting);
bool lynd_restarting();

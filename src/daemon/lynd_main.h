// The daemon's entry: options, start, the event loop, tear-down.
#pragma once
#include "config/lynd_config.h"
#include "modules/module.h"

// Returns the exit status: 1 after a fatal start-up error.
int lynd_main(int argc, char** argv);
int lynd_main_with(int argc, char** argv, const lynd_module_table& modules);

// The wireless platform's start hook.
void config_bridge(lynd_config* conf);
// The platform's stop hook, then every configured bridge stops.
void config_bridge_revert(lynd_config* conf);

// The daemon's entry: options, start, the event loop, tear-down.
#pragma once
#include "modules/module.h"

// Returns the exit status; fatal start-up errors exit(1) on the spot.
int lynd_main(int argc, char** argv);
int lynd_main_with(int argc, char** argv, const lynd_module_table& modules);

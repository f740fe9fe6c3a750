// The wireless platform's start and stop hooks, and the bridges' tear-down.
#pragma once
#include "config/lynd_config.h"

void config_bridge(lynd_config* conf);
// The platform's stop hook, then every configured bridge stops.
void config_bridge_revert(lynd_config* conf);

// The daemon's object on the bus, "lynd": what it is doing and why.
#pragma once
#include "config/lynd_config.h"

// Publishes the object (again after each bus reconnect); started_ms is the
// daemon's monotonic start, from which uptimes count.
void lynd_status_object_start(lynd_config* conf, int64_t started_ms);

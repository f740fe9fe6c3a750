// `ubus call lynd record '{"enable":true,"file":"lynd.trace","size":N}'`:
// answers, then restarts the daemon's run so the trace begins at its start
// ({"enable":false} ends the trace, no restart). "file" is a name in the
// daemon's trace directory (/tmp/lynd), never a path; without it the
// configured one is used. "size" is the bytes of each of the two rotating
// files, at most 8 MiB. A refused call logs why and restarts nothing.
#pragma once
#include "config/lynd_config.h"
#include "platform/bus.h"

extern const lynd::bus_policy record_args[3];

int record_method(lynd_config* conf, const lynd::BusMessage& args, lynd::BusReply& r);

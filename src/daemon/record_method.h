// `ubus call lynd record '{"enable":true,"file":"/tmp/lynd.trace","size":N}'`:
// answers, then restarts the daemon's run so the trace begins at its start
// ({"enable":false} ends the trace, no restart). Without "file" the
// configured one is used; "size" is the bytes of each of the two rotating
// files.
#pragma once
#include "config/lynd_config.h"
#include "platform/bus.h"

extern const lynd::bus_policy record_args[3];

int record_method(lynd_config* conf, const lynd::BusMessage& args, lynd::BusReply& r);

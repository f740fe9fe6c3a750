#include "daemon/restart_request.h"

#include "platform/seams.h"

namespace {

bool g_restart = false;
bool g_restarting = false;

}  // namespace

void lynd_restart_request() {
    g_restart = true;
    lynd::loop().end();
}

bool lynd_restart_requested() { return g_restart; }

void lynd_restart_reset() { g_restart = false; }

void lynd_set_restarting(bool restarting) { g_restarting = restarting; }

bool lynd_restarting() { return g_restarting; }

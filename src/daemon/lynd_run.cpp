#include "daemon/lynd_run.h"

#include "daemon/lynd_main.h"
#include "platform/seams.h"

namespace {

bool g_restart = false;

}  // namespace

void lynd_restart_request() {
    g_restart = true;
    lynd::loop().end();
}

bool lynd_restart_requested() { return g_restart; }

void lynd_restart_reset() { g_restart = false; }

int lynd_run(int argc, char** argv) {
    int rc = 0;
    do {
        rc = lynd_main(argc, argv);
    } while (rc == 0 && g_restart);
    return rc;
}

#include "daemon/lynd_run.h"

#include "daemon/lynd_main.h"
#include "daemon/restart_request.h"

int lynd_run(int argc, char** argv) {
    int rc = 0;
    lynd_set_restarting(false);
    do {
        rc = lynd_main(argc, argv);
        lynd_set_restarting(true);
    } while (rc == 0 && lynd_restart_requested());
    lynd_set_restarting(false);
    return rc;
}

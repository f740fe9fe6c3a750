#include "daemon/lynd_run.h"

#include "daemon/lynd_main.h"
#include "daemon/restart_request.h"

int lynd_run(int argc, char** argv) {
    int rc = 0;
    do {
        rc = lynd_main(argc, argv);
    } while (rc == 0 && lynd_restart_requested());
    return rc;
}

// lynd-check [--strict] [-q] [FILE]: is FILE (default /etc/lynd.json) a
// configuration the daemon will run with, and run well?
#include <cstdio>
#include <cstring>

#include "config/config.h"
#include "core/log.h"
#include "platform/seams.h"
#include "targets/check/config_check.h"
#include "targets/linux/linux_host.h"

namespace {

void usage(const char* prog) {
    std::fprintf(stderr,
                 "%s [--strict] [-q] [FILE]\n"
                 "  checks FILE (default %s) as lynd loads it\n"
                 "  --strict  exit 1 when there are warnings\n"
                 "  -q        one line: why the file is refused, or how many warnings it has\n"
                 "exit status: 0 usable, 1 warnings (--strict), 2 refused by the daemon\n",
                 prog, LYND_DEFAULT_CONFIG);
}

}  // namespace

int main(int argc, char** argv) {
    config_check_options opt{};
    const char* path = LYND_DEFAULT_CONFIG;
    int files = 0;
    for (int i = 1; i < argc; i++) {
        if (std::strcmp(argv[i], "--strict") == 0) {
            opt.strict = true;
        } else if (std::strcmp(argv[i], "-q") == 0) {
            opt.brief = true;
        } else if (std::strcmp(argv[i], "-h") == 0 || std::strcmp(argv[i], "--help") == 0) {
            usage(argv[0]);
            return CHECK_CLEAN;
        } else if (argv[i][0] == '-' || ++files > 1) {
            usage(argv[0]);
            return CHECK_REFUSED;
        } else {
            path = argv[i];
        }
    }
    lynd::LinuxHost host(nullptr);
    lynd::install_seams({nullptr, &host, nullptr, nullptr, nullptr});
    g_lynd_dgb_lvl = 0;  // the report tells everything the loader's lines would
    return config_check_file(path, opt, stdout);
}

#include "daemon/options.h"

#include <getopt.h>

#include <cstdio>
#include <cstdlib>

#include "config/config.h"
#include "core/log.h"
#include "wlan/wlan_platform.h"

namespace {

void print_usage(const char* prog) { std::fprintf(stderr, "%s [-c config] [-h]\n", prog); }

}  // namespace

int lynd_level_from_arg(const char* arg) {
    int level = std::atoi(arg);
    if (level > LYND_LVL_TRACE)
        return LYND_LVL_TRACE;
    if (level <= 0)
        return LYND_LVL_ERR;
    return level;
}

lynd_option_action lynd_parse_options(int argc, char** argv, lynd_options* out) {
    out->config_path = LYND_DEFAULT_CONFIG;
    const char* prog = argc > 0 ? argv[0] : "lynd";
    optind = 0;  // full rescan, so the entry can run more than once per process
    opterr = 0;  // the usage line is the only complaint
    int c;
    while ((c = getopt(argc, argv, "c:hl:t")) != -1) {
        switch (c) {
        case 'c':
            out->config_path = optarg;
            break;
        case 'l':
            g_lynd_dgb_lvl = lynd_level_from_arg(optarg);
            LYND_LOG_AS("main", "g_lynd_dgb_lvl=%d!", g_lynd_dgb_lvl);
            break;
        case 'h':
            print_usage(prog);
            return lynd_option_action::HELP;
        case 't':
            g_lynd_dgb_lvl = LYND_LVL_DEBUG;
            g_dgb_lvl = LYND_LVL_DEBUG;
            (void)lynd_platform_test();
            return lynd_option_action::TEST;
        default:
            print_usage(prog);
            return lynd_option_action::USAGE;
        }
    }
    return lynd_option_action::RUN;
}

#include "modules/path_selection/dumps.h"

#include <cstring>

#include "config/config.h"
#include "core/log.h"
#include "core/mac.h"
#include "core/state_file.h"
#include "modules/path_selection/paths_info_json.h"
#include "platform/seams.h"

namespace {

uint32_t index_of(const char* name) { return lynd::host().if_nametoindex(name); }

void print_ips(const hc_entry& e) {
    for (int i = 0; i < 3; i++) {
        uint8_t ip[4];
        std::memcpy(ip, e.reserved1 + 4 + i * 4, 4);
        if (ip[0] == 0 && ip[1] == 0 && ip[2] == 0 && ip[3] == 0)
            return;
        lynd_printf("   IP[%d]:%03d.%03d.%03d.%03d", i + 1, ip[0], ip[1], ip[2], ip[3]);
    }
}

void print_client(const hc_client& c, const hc_path& p) {
    char src[LYND_NAME_LEN] = {};
    if (!lynd::host().if_indextoname(c.hc.src_port, src))
        src[0] = '\0';
    const uint8_t* m = c.hc.mac;
    lynd_printf("%s    [%02d]%-12s[%02d]%-12s%-11lld%lld", lynd_mac(m).s, static_cast<int>(c.hc.src_port), src,
                static_cast<int>(index_of(p.name)), p.name, static_cast<long long>(c.hc.bytes),
                static_cast<long long>(c.hc.pkts));
    print_ips(c.hc);
}

}  // namespace

int path_selection_dump_paths_info(conf_bridge*, hc_path* paths) {
    paths_info_row rows[IF_TYPE_MAX];
    size_t n = 0;
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++)
        if (path_is_live(paths[t]))
            rows[n++] = paths_info_row{paths[t].name, paths[t].rate, paths[t].util};
    char text[PATHS_INFO_MAX];
    size_t len = path_selection_format_paths_info(rows, n, text, sizeof text);
    // A write that fails is made again at the next period run.
    if (len > 0)
        (void)lynd_write_state_file(PATHS_INFO_FILE, text, len);
    return static_cast<int>(n);
}

void path_selection_dump_uplinks(const hc_path* paths) {
    lynd_printf(
        "------------dump uplink info----------------\n"
        "name            priority rate   util   quota   overload    state");
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        const hc_path& p = paths[t];
        if (!path_is_live(p))
            continue;
        lynd_printf("[%02d]%-12s%-9d%-7d%-7d%-8d%-12d%s", static_cast<int>(index_of(p.name)), p.name, p.priority,
                    p.rate, p.util, p.quota, p.overload, path_state_names[p.state]);
    }
}

void path_selection_dump_clients(lynd_config* conf, hc_path* paths) {
    config_dump(conf);
    lynd_printf(
        "------------dump client path----------------\n"
        "mac                  src             dst             bytes      packets");
    for (uint32_t t = 0; t < IF_TYPE_MAX; t++) {
        hc_path& p = paths[t];
        if (p.state == PATH_UNINITED)
            continue;
        for (lynd_list* n = p.clients.next; n != &p.clients; n = n->next)
            print_client(*hc_client_of_path_node(n), p);
    }
    lynd_printf("------------dump client path end----------------\n");
}

#include <memory>
#include <new>

#include "config/config.h"
#include "core/log.h"
#include "platform/seams.h"

void config_load(lynd_config* conf, const char* filename) {
    // One byte more than allowed tells an oversized file from a full one.
    std::unique_ptr<char[]> text(new (std::nothrow) char[LYND_CONFIG_MAX_SIZE + 1]);
    long len = text ? lynd::host().read_file(filename, text.get(), LYND_CONFIG_MAX_SIZE + 1) : -1;
    config_parse_result rc = config_parse_result::BAD_JSON;
    if (len >= 0 && static_cast<size_t>(len) <= LYND_CONFIG_MAX_SIZE)
        rc = config_parse(conf, text.get(), static_cast<size_t>(len));
    switch (rc) {
    case config_parse_result::OK:
        return;
    case config_parse_result::BAD_JSON:
        LYND_FATAL("parse config");
    case config_parse_result::BAD_INTERFACE_TYPE:
        LYND_FATAL("invalid interface type");
    }
}

void config_free(lynd_config* conf) {
    conf->n_bridges = 0;
    conf->n_interfaces = 0;
}

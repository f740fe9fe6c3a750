// Configuration files of any shape through the loader's parser.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "config/config.h"
#include "fuzz/fuzz_seams.h"

namespace {

// A stored name must end inside its field.
void check_name(const char* name) {
    if (std::memchr(name, '\0', LYND_NAME_LEN) == nullptr)
        __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    g_lynd_dgb_lvl = LYND_LVL_ERR;  // the daemon's default level
    static lynd_config conf;
    conf = lynd_config{};
    (void)config_parse(&conf, reinterpret_cast<const char*>(data), size);
    if (conf.n_bridges > LYND_MAX_BRIDGES || conf.n_interfaces > LYND_MAX_INTERFACES)
        __builtin_trap();
    for (uint64_t i = 0; i < conf.n_bridges; i++)
        check_name(conf.bridges[i].name);
    for (uint64_t i = 0; i < conf.n_interfaces; i++)
        check_name(conf.interfaces[i].name);
    return 0;
}

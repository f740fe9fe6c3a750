// Configuration files of any shape through the loader's parser.
#include <cstddef>
#include <cstdint>

#include "config/config.h"
#include "fuzz/fuzz_seams.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    static lynd_config conf;
    conf = lynd_config{};
    if (config_parse(&conf, reinterpret_cast<const char*>(data), size) == config_parse_result::OK) {
        config_dump(&conf);
        // Every stored name must be terminated inside its field.
        for (uint64_t i = 0; i < conf.n_interfaces; i++)
            if (conf.interfaces[i].name[LYND_NAME_LEN - 1] != '\0')
                __builtin_trap();
    }
    return 0;
}

// Configuration files of any shape through lynd-check: a verdict for every
// one, never a crash, and the refusal always says why.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_seams.h"
#include "targets/check/config_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzSeams& seams = fuzz_seams();
    static std::FILE* sink = std::fopen("/dev/null", "w");
    seams.host.set_file("/etc/lynd.json", std::string(reinterpret_cast<const char*>(data), size));
    // One interface present on the node and in a bridge, one present alone.
    static bool node = false;
    if (!node) {
        seams.host.add_interface({"ath12", 12, {}});
        seams.host.add_interface({"eth1", 3, {}});
        seams.host.add_interface({"br-lan", 20, {}});
        node = true;
    }
    seams.host.set_file("/sys/class/net/ath12/brport/state", "3");
    seams.host.set_file("/sys/class/net/br-lan/brif/ath12/state", "3");
    config_check_options opt{};
    opt.strict = size > 0 && (data[0] & 1) != 0;
    opt.brief = size > 0 && (data[0] & 2) != 0;
    int rc = config_check_file("/etc/lynd.json", opt, sink);
    fuzz_check(rc == CHECK_CLEAN || rc == CHECK_WARNINGS || rc == CHECK_REFUSED, "exit status 0, 1 or 2");
    fuzz_check(rc != CHECK_WARNINGS || opt.strict, "warnings fail only a strict check");
    return 0;
}

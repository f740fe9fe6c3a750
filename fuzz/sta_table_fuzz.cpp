// Station-table replies of any shape, with any claimed length, through the
// record walk and the request that hands it the reply.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_seams.h"
#include "wlan/qca/link_stats_qca.h"
#include "wlan/qca/qca_ioctl.h"
#include "wlan/qca/sta_table_parse.h"

namespace {

// Answers the station table with the input; its first two bytes are the
// length the driver claims.
class ReplayDriver : public lynd::SimDriver {
public:
    const uint8_t* data = nullptr;
    size_t size = 0;
    int ioctl(unsigned long, void* arg) override {
        auto* req = static_cast<iw_request*>(arg);
        if (size < 2)
            return -1;
        size_t n = std::min<size_t>(size - 2, req->u.data.length);
        std::memcpy(req->u.data.pointer, data + 2, n);
        std::memcpy(&req->u.data.length, data, 2);
        return 0;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzSeams& seams = fuzz_seams();
    std::vector<uint8_t> reply(data, data + size);
    static wlan_link_info links[64];
    size_t n = qca_read_sta_table(reply.data(), reply.size(), links, QCA_STA_MAX_LINKS);
    // Each record needs its fixed fields whole and moves the walk on.
    size_t most = reply.size() < QCA_STA_RECORD_MIN ? 0 : reply.size() - QCA_STA_RECORD_MIN + 1;
    fuzz_check(n <= QCA_STA_MAX_LINKS && n <= most, "records within the reply");
    n = qca_read_sta_table(reply.data(), reply.size(), links, 64);
    fuzz_check(n <= 64 && n <= most, "records within the room");

    static ReplayDriver driver;
    driver.data = reply.data();
    driver.size = reply.size();
    seams.host.set_driver(&driver);
    fuzz_check(wlan_get_links_qca("ath12", links, true) <= QCA_STA_MAX_LINKS, "peers within the room");
    seams.host.set_driver(nullptr);
    return 0;
}

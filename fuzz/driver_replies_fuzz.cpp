// What the wireless driver answers: a channel utilisation, an access point
// and a mode, taken from the input, through the QCA back-end's reads.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_seams.h"
#include "sim/node/sim_driver.h"
#include "wlan/qca/link_stats_qca.h"
#include "wlan/qca/qca_ioctl.h"

namespace {

// Copies the input over whatever the request's reply area is.
class ReplyDriver : public lynd::SimDriver {
public:
    const uint8_t* data = nullptr;
    size_t size = 0;
    int ioctl(unsigned long request, void* arg) override {
        if (size == 0)
            return -1;
        int rc = static_cast<int8_t>(data[0]) < -100 ? -static_cast<int>(data[0] & 0x3f) : 0;
        auto* req = static_cast<iw_request*>(arg);
        size_t n = size - 1 < sizeof req->u ? size - 1 : sizeof req->u;
        if (request != QCA_IOCTL_STA_TABLE)
            std::memcpy(&req->u, data + 1, n);
        return rc;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzSeams& s = fuzz_seams();
    static ReplyDriver driver;
    driver.data = data;
    driver.size = size;
    s.host.set_driver(&driver);
    uint8_t util = 0;
    (void)wlan_get_channel_utilization_qca("ath12", &util, 2, true);
    int up = lynd_get_wireless_link_state("ath12");
    fuzz_check(up == 0 || up == 1, "association");
    fuzz_check(s.host.open_sockets() == 0, "no socket left open");
    s.host.set_driver(nullptr);
    return 0;
}

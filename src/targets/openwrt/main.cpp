// lynd on the router: the real platform behind every seam.
#include "daemon/lynd_run.h"
#include "targets/linux/linux_host.h"
#include "targets/openwrt/krel_vendor.h"
#include "targets/openwrt/ubus_bus.h"
#include "targets/openwrt/uci_store_libuci.h"
#include "targets/openwrt/uloop_loop.h"
#include "core/log.h"
#include "platform/seams.h"
#include "wlan/qca/qca_layouts.h"

namespace {

#ifdef LYND_KREL_STUB
constexpr bool kKrelStub = true;
#else
constexpr bool kKrelStub = false;
#endif

}  // namespace

int main(int argc, char** argv) {
    lynd::LinuxHost host("/dev/console");
    lynd::UloopLoop loop;
    lynd::LibUciStore uci;
    lynd::KrelVendor krel;
    lynd::UbusBus bus;
    // The QCA back-end drives the radios; the recorder learns its requests here.
    lynd::install_seams({&loop, &host, &uci, &krel, &bus, &qca_driver_requests});
    if (kKrelStub)
        LYND_ERR("built with a stand-in for the bridge library: no bridge is programmed");
    return lynd_run(argc, argv);
}

// lynd on the router: the real platform behind every seam.
#include "core/lynd_main.h"
#include "platform/linux/linux_host.h"
#include "platform/openwrt/krel_vendor.h"
#include "platform/openwrt/ubus_bus.h"
#include "platform/openwrt/uci_store_libuci.h"
#include "platform/openwrt/uloop_loop.h"
#include "platform/seams.h"

int main(int argc, char** argv) {
    lynd::LinuxHost host("/dev/console");
    lynd::UloopLoop loop;
    lynd::LibUciStore uci;
    lynd::KrelVendor krel;
    lynd::UbusBus bus;
    lynd::install_seams({&loop, &host, &uci, &krel, &bus});
    return lynd_main(argc, argv);
}

// One instance of each seam is installed at start-up (tests install fakes).
#pragma once
#include "platform/krel_api.h"
#include "platform/bus.h"
#include "platform/driver_requests.h"
#include "platform/host.h"
#include "platform/loop.h"
#include "platform/uci_store.h"

namespace lynd {

struct Seams {
    Loop* loop = nullptr;
    Host* host = nullptr;
    UciStore* uci = nullptr;
    KrelApi* krel = nullptr;
    Bus* bus = nullptr;
    // The wireless back-end's driver requests, for the recorder; none: it
    // writes only the descriptor, number and interface of each.
    const DriverRequests* driver = nullptr;
};

// Replaces the installed seams; returns the previous set.
Seams install_seams(const Seams& s);
const Seams& installed_seams();

// Each aborts with a message when its seam was never installed.
Loop& loop();
Host& host();
UciStore& uci();
KrelApi& krel();
Bus& bus();

}  // namespace lynd

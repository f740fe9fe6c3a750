#include "platform/seams.h"

#include <cstdio>
#include <cstdlib>

namespace lynd {

namespace {

Seams g_installed;

template <typename T>
T& require(T* p, const char* what) {
    if (p == nullptr) {
        std::fprintf(stderr, "lynd: no %s installed\n", what);
        std::abort();
    }
    return *p;
}

}  // namespace

Seams install_seams(const Seams& s) {
    Seams prev = g_installed;
    g_installed = s;
    return prev;
}

const Seams& installed_seams() { return g_installed; }

Loop& loop() { return require(g_installed.loop, "loop"); }
Host& host() { return require(g_installed.host, "host"); }
UciStore& uci() { return require(g_installed.uci, "UCI store"); }
KrelApi& krel() { return require(g_installed.krel, "bridge library"); }
Bus& bus() { return require(g_installed.bus, "bus"); }

}  // namespace lynd

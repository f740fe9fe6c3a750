#include "core/shadow.h"

#include "core/log.h"

namespace {

bool g_shadow;
uint32_t g_held;

}  // namespace

bool lynd_shadow_mode() { return g_shadow; }

void lynd_set_shadow_mode(bool on) {
    if (on != g_shadow)
        LYND_WARN("shadow mode %s", on ? "on: decisions are logged, nothing is steered" : "off");
    g_shadow = on;
}

bool lynd_shadow_holds(const char* what) {
    if (!g_shadow)
        return false;
    g_held++;
    LYND_DEBUG("shadow: %s not done", what);
    return true;
}

uint32_t lynd_shadow_held_count() { return g_held; }

void lynd_shadow_reset() {
    g_shadow = false;
    g_held = 0;
}

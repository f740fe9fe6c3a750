// Shadow mode: every decision is made and told, and nothing that steers
// traffic reaches the bridge, the radios or the broadcast file.
#pragma once
#include <cstdint>

bool lynd_shadow_mode();
void lynd_set_shadow_mode(bool on);
// True, and the held-back action counted, when shadow mode is on: the
// caller then skips it and goes on as if it had been done.
bool lynd_shadow_holds(const char* what);
uint32_t lynd_shadow_held_count();
void lynd_shadow_reset();

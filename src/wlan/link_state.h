// Link-up bookkeeping per interface type, and the flag a link event raises
// for the next periodic run of path selection.
#pragma once
#include <cstdint>

#include "core/types.h"

struct link_state_flags {
    uint8_t link_state[IF_TYPE_MAX];  // 1 = link up
    uint8_t link_state_changed;
};
extern link_state_flags g_link_state;
// Everything as at start (for tests).
void lynd_link_state_reset();

// Whether the station link of a wireless type (1..4) is associated; 0 for
// any other type.
int lynd_check_link_state(uint32_t type);
// The same, keeping the type's flag and clearing its sampling records when
// the link has just come up.
int lynd_check_link_state_v2(uint32_t type);
void lynd_check_and_reset_util_record(uint32_t type, int up);
void lynd_set_link_state_changed(uint8_t flag);
uint8_t lynd_get_link_state_changed();
// All five link flags to 0.
void lynd_reset_link_state_all();

// The operator's word on single clients: an excluded client is left where
// the bridge has it; a pinned one goes only to its path while that is live.
#pragma once
#include <cstdint>

#include "modules/path_selection/hc_records.h"

bool client_excluded(const hc_client& c);
bool client_mac_excluded(const uint8_t* mac);
// The slot a pinned client belongs on now: its pin while that path is
// live, PATH_NONE when it is not pinned or its path is not live.
uint8_t client_pinned_slot(const hc_client& c);
// The client's pin whether live or not, PATH_NONE for none.
uint8_t client_pin(const hc_client& c);
// Whether a move of c towards slot `to` goes against its pin.
bool client_pin_forbids(const hc_client& c, uint8_t to);

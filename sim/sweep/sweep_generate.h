// A random scenario drawn from a seed: an extender with its backhauls,
// clients, link behaviour, faults and a configuration within its ranges.
// The result is an ordinary scenario document, so the parser that reads
// bundled scenarios reads it, and a kept one replays alone.
#pragma once
#include <cstdint>

#include <json-c/json.h>

namespace lynd {

// The caller owns the document.
json_object* sweep_generate(uint64_t seed, int64_t duration_s);
// Leaves out timeline events and CPU figures after the document's end.
void sweep_clip(json_object* doc);

}  // namespace lynd

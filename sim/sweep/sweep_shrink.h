// Makes a scenario that breaks an invariant smaller while it still breaks
// it: a shorter run, fewer timeline events, clients, rules and paths.
#pragma once
#include <cstdint>
#include <functional>

#include <json-c/json.h>

namespace lynd {

// True when the document still breaks the invariant.
using SweepStillBreaks = std::function<bool(json_object* doc)>;

// A new document (the caller owns it); doc is left as it was. at_ms: when
// the invariant first broke.
json_object* sweep_shrink(json_object* doc, int64_t at_ms, const SweepStillBreaks& still_breaks);

}  // namespace lynd

// Short words for what happened in a run, as the timeline picture labels
// them: a glance must tell the event, the tooltip keeps the whole of it.
#pragma once
#include <string>

#include "sim/scenario/scenario.h"

namespace lynd {

// "link ath12 rssi -88", "link ath02 down", "ubus lynd.link_state",
// "netlink type 5", "hc entry 02:..:0a:01 ath0 → ath12": never a raw JSON
// text; a message given by fields is told by its fields.
std::string event_label(const TimelineEntry& e);
// The label and the entry's data as given, for the tooltip.
std::string event_detail(const TimelineEntry& e);
// "02:00:00:00:0a:01" as "02:..:0a:01"; anything else as it stands.
std::string short_mac(const std::string& mac);

}  // namespace lynd

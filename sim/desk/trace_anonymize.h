// lynd-sim anonymize IN OUT: every MAC address (as text, and as bytes in
// datagrams, tables, frames and driver replies) and every SSID replaced by
// a stand-in, the same one wherever it appears. The first octet stays, as
// the driver's sibling addresses differ only there; the other five are
// numbered. Group and broadcast addresses stay as they are.
#pragma once
#include <string>

namespace lynd {

// The anonymized trace text, or false with error when in is no trace.
bool trace_anonymize(const std::string& in, std::string* out, std::string* error);

}  // namespace lynd

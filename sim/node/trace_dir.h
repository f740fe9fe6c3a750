// A private directory on the PC for the traces a simulated run writes
// (lynd-sim run --record, and the daemon's own when a record call asks).
#pragma once
#include <string>
#include <vector>

namespace lynd {

// A new directory of this user only below /tmp; "" when none could be made.
std::string trace_dir_make();
// dir (made when missing) as an absolute path, as the daemon takes it; "" on
// failure.
std::string trace_dir_at(const char* dir);
// The recordings in dir, each as its files part 1 first (NAME.1 before NAME).
std::vector<std::vector<std::string>> trace_dir_recordings(const std::string& dir);
// The files in dir go, then dir itself.
void trace_dir_remove(const std::string& dir);

}  // namespace lynd

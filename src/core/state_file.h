// The daemon's state files in /tmp, where anyone may put a directory or a
// file of their own first, or fill the disk.
#pragma once
#include <cstddef>

constexpr int STATE_FILES_MAX = 4;

// Writes path whole through the host: true when written. Every failure is
// counted; an ERR naming the obstacle comes once per episode (the first
// failure after a success, or an obstacle other than the last), so a squat
// that lasts does not fill the log. The caller tries again at its next run.
bool lynd_write_state_file(const char* path, const char* data, size_t len);
// The same for a file other daemons steer by: in shadow mode the write is
// held (counted and told, as every steering action) and counts as done.
bool lynd_write_steering_file(const char* path, const char* data, size_t len, const char* what);
// The obstacle (an errno value) path last met, 0 when its last write worked.
int lynd_state_file_obstacle(const char* path);
void lynd_state_files_reset();

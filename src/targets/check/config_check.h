// lynd-check: a configuration file read exactly as the daemon reads it,
// then its problems, the values the daemon will use, and the mistakes that
// break a mesh.
#pragma once
#include <cstdio>

struct config_check_options {
    bool strict;  // warnings fail the check
    bool brief;   // one line: the refusal or the count of warnings
};

constexpr int CHECK_CLEAN = 0;
constexpr int CHECK_WARNINGS = 1;  // only under strict
constexpr int CHECK_REFUSED = 2;   // the daemon would not start with it

// Checks the file at path through the host seam and writes the report to
// out; the exit status.
int config_check_file(const char* path, const config_check_options& opt, std::FILE* out);

// Copies the simulated node's files (the state files the daemon wrote, and
// its configuration) into a directory on the PC, for a look after a run.
#pragma once
#include <string>

#include "sim/node/sim_host.h"

namespace lynd {

// "/tmp/hybr_broadcast_port" lands in dir/tmp/hybr_broadcast_port. A path
// that would leave dir is refused. False with a message on the first problem.
bool write_state_dir(const SimHost& host, const std::string& dir, std::string* error);

// Writes data as the whole of a file on the PC. False with a message.
bool write_whole_file(const std::string& path, const std::string& data, std::string* error);

// The place of path below dir, or "" when path would leave dir.
std::string state_path(const std::string& dir, const std::string& path);

}  // namespace lynd

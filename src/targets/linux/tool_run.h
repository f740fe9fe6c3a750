// Tools run for the host seam on Linux: no shell, a child that shares the
// daemon's memory until it execs (no copy of a large daemon's page tables),
// default signal dispositions and an empty mask in the child, and a deadline
// after which its process group is killed and reaped.
#pragma once
#include <sys/types.h>

#include <cstddef>

namespace lynd {

// Starts argv with its standard output on out_fd (-1: inherited), in a
// process group of its own; its pid, or -1 when it could not be run.
pid_t tool_spawn(const char* const argv[], int out_fd);

// Waits for pid at most timeout_ms: its exit status, -1 when it died of a
// signal, TOOL_TIMED_OUT when it had to be killed.
int tool_wait(pid_t pid, int timeout_ms);

// The host seam's runs, each ended within timeout_ms.
int tool_run_capture(const char* const argv[], char* out, size_t size, int timeout_ms);
int tool_run_status(const char* const argv[], int timeout_ms);

}  // namespace lynd

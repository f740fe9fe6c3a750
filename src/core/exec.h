// Running a tool and reading its output. The command is an argument vector:
// no shell ever sees text built from outside data.
#pragma once
#include <cstdint>

// Reads at most size bytes of the tool's standard output into buf, adding no
// terminator. -1 for null arguments, size below 1, or a tool that cannot run.
int32_t lynd_exec_and_res(const char* const argv[], char* buf, int32_t size);

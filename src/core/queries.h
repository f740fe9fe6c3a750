// Tools and UCI options the daemon reads, and what the node is by them.
// A tool runs from an argument vector: no shell ever sees text built from
// outside data.
#pragma once
#include <cstddef>
#include <cstdint>

// Tool runs through the host seam, each counted in tool_run_failures when it
// fails: -1 when the tool could not run or was killed at its deadline (one
// ERR line names it then), else the bytes read / its exit status.
int lynd_tool_capture(const char* const argv[], char* out, size_t size);
int lynd_tool_status(const char* const argv[]);

// Reads at most size bytes of the tool's standard output into buf, adding no
// terminator. -1 for null arguments, size below 1, or a tool that cannot run.
int32_t lynd_exec_and_res(const char* const argv[], char* buf, int32_t size);

constexpr size_t LYND_UCI_PATH_MAX = 64;

// Copies the option at path (extended syntax) into value, at most size - 1
// characters. True only when the option exists; a list option has no single
// value and counts as absent.
bool lynd_uci_get_value(const char* path, char* value, size_t size);

// WORK_MODE_FAP on the controller, WORK_MODE_RE everywhere else.
uint32_t lynd_get_work_mode();

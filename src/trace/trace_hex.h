// How a record writes bytes, and how they read back: hex, with runs of
// zeros as z<count>. (driver replies, frames and library buffers are mostly
// zeros). The writer and the reader stand side by side so they cannot drift.
#pragma once
#include <cstddef>
#include <cstdint>

namespace lynd {

// No buffer the daemon hands over is larger: the bound of a decoded field
// that fills none of the daemon's own (anonymize, checks).
constexpr size_t TRACE_FIELD_MAX = 1024 * 1024;

// n bytes as a record writes them into out: the length, or more than room
// when they do not fit.
size_t trace_hex(char* out, size_t room, const void* p, size_t n);

// Pure: reads len characters written by trace_hex into out, keeping the
// first room bytes; *decoded is how many the text holds. False on an odd
// length, a character not hex, or a zero run longer than any field.
bool trace_unhex(const char* hex, size_t len, uint8_t* out, size_t room, size_t* decoded);

}  // namespace lynd

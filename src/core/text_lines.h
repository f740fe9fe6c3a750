// Tool output and /proc files read line by line, as fgets would: a line
// longer than the buffer goes on in the next call.
#pragma once
#include <cstddef>

// Copies the line at pos (at most line_max - 1 bytes of it) into line,
// terminated; the position after what was taken.
size_t lynd_next_line(const char* text, size_t len, size_t pos, char* line, size_t line_max);

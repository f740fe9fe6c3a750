// Tool output and /proc files read line by line, as fgets would: a line
// longer than the buffer goes on in the next call.
#pragma once
#include <cstddef>
#include <cstring>

// Copies the line at pos (at most line_max - 1 bytes of it) into line,
// terminated; the position after what was taken.
inline size_t lynd_next_line(const char* text, size_t len, size_t pos, char* line, size_t line_max) {
    size_t n = 0;
    while (pos + n < len && n + 1 < line_max && text[pos + n] != '\n')
        n++;
    std::memcpy(line, text + pos, n);
    line[n] = '\0';
    return pos + n < len && text[pos + n] == '\n' ? pos + n + 1 : pos + n;
}

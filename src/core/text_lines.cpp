#include "core/text_lines.h"

#include <cstring>

size_t lynd_next_line(const char* text, size_t len, size_t pos, char* line, size_t line_max) {
    size_t n = 0;
    while (pos + n < len && n + 1 < line_max && text[pos + n] != '\n')
        n++;
    std::memcpy(line, text + pos, n);
    line[n] = '\0';
    return pos + n < len && text[pos + n] == '\n' ? pos + n + 1 : pos + n;
}

// How lynd-check writes its report.
#pragma once
#include <cstdint>
#include <cstdio>

#include "config/lynd_config.h"

struct check_printer {
    std::FILE* out;
    bool brief;  // only the summary line is written
};

// "label: where: text", one line.
void check_line(check_printer* p, const char* label, const char* where, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

// The values the daemon will work with, after defaults, clamping and the
// period rule.
void print_effective(const lynd_config& conf, std::FILE* out);

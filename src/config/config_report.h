// What the loader found wrong with a configuration file, told once per
// problem with the member path it sits at ("interfaces.ath12.nonrelay").
// The daemon logs each one; lynd-check prints them as a report.
#pragma once
#include <cstddef>
#include <cstdint>

enum class config_severity : uint8_t {
    WARNING,  // the daemon goes on with what it says it uses instead
    ERROR,    // the daemon goes on, but a whole section is lost
    REFUSED,  // the daemon will not start with this file
};

constexpr size_t CONFIG_WHERE_MAX = 80;
constexpr size_t CONFIG_TEXT_MAX = 320;

struct config_report {
    // Receives every problem in file order; null: the daemon's log.
    void (*sink)(void* ctx, config_severity severity, const char* where, const char* text);
    void* ctx;
    uint32_t warnings;
    uint32_t errors;
    // Why the file is refused ("" while it is not), with its place.
    char refusal[CONFIG_WHERE_MAX + CONFIG_TEXT_MAX];
};

void config_note(config_report* r, config_severity severity, const char* where, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

// where + "." + key, cut to fit and always terminated.
void config_where(char* out, const char* where, const char* key);

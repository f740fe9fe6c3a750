// The live paths as other programs read them: a JSON array written the way
// json-c writes it in its plain form, built in fixed storage.
#pragma once
#include <cstddef>
#include <cstdint>

struct paths_info_row {
    const char* name;
    uint32_t rate;  // Mbps
    uint32_t util;  // percent
};

// Room for five rows with names of 15 characters, each escaped to its longest.
constexpr size_t PATHS_INFO_MAX = 1024;

// Pure: [{"name":..,"rate":..,"utilization":..},...], no newline; the length,
// or 0 when it does not fit in size (nothing in buf is then meaningful).
size_t path_selection_format_paths_info(const paths_info_row* rows, size_t n, char* buf, size_t size);

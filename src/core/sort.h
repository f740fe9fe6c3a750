// Ordering small arrays of figures in place.
#pragma once
#include <cstdint>

// Sorts n values in descending order; the count of leading non-zero values
// (8 bits, it wraps).
uint8_t lynd_sort_array(uint16_t* values, int n);

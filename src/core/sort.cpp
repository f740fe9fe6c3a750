#include "core/sort.h"

uint8_t lynd_sort_array(uint16_t* values, int n) {
    if (values == nullptr || n <= 0)
        return 0;
    for (int pass = n - 1; pass >= 1; pass--) {
        for (int i = 0; i < pass; i++) {
            if (values[i] < values[i + 1]) {
                uint16_t t = values[i];
                values[i] = values[i + 1];
                values[i + 1] = t;
            }
        }
    }
    uint8_t count = 0;
    for (int i = 0; i < n && values[i] != 0; i++)
        count++;
    return count;
}

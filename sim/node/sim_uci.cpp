#include "sim/node/sim_uci.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace lynd {

namespace {

// A path needs a package, a section and an option, all non-empty.
bool well_formed(const char* path) {
    const char* first = std::strchr(path, '.');
    if (first == nullptr || first == path)
        return false;
    const char* last = std::strrchr(path, '.');
    return last != first && last[1] != '\0' && last != first + 1;
}

}  // namespace

UciResult SimUci::get(char* path, char* value, size_t size) {
    if (context_fails_)
        return UciResult::CONTEXT_FAILED;
    if (!well_formed(path)) {
        std::fprintf(stderr, "lookup ptr: Invalid argument\n");
        return UciResult::LOOKUP_FAILED;
    }
    auto it = values_.find(path);
    if (it == values_.end() || size == 0)
        return UciResult::NOT_FOUND;
    size_t n = std::min(size - 1, it->second.size());
    std::memcpy(value, it->second.data(), n);
    value[n] = '\0';
    return UciResult::FOUND;
}

}  // namespace lynd

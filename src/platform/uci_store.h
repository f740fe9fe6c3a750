// The UCI seam: one option read by extended path ("pkg.section.option",
// "pkg.@type[i].option").
#pragma once
#include <cstddef>

namespace lynd {

enum class UciResult {
    FOUND,           // value copied (cut to size - 1)
    NOT_FOUND,       // package/section/option absent, or not a plain option
    CONTEXT_FAILED,  // no UCI context could be allocated
    LOOKUP_FAILED,   // the path did not parse or the package did not load
};

class UciStore {
public:
    virtual ~UciStore() = default;
    // path is writable: libuci parses it in place.
    virtual UciResult get(char* path, char* value, size_t size) = 0;
};

}  // namespace lynd

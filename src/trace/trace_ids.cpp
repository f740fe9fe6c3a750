#include "trace/trace_ids.h"

namespace lynd {

int TraceIds::find(const void* p) const {
    for (int i = 0; i < n_; i++)
        if (ptrs_[i] == p)
            return i;
    return -1;
}

int TraceIds::id_of(const void* p) {
    int id = find(p);
    if (id >= 0 || n_ == kMax)
        return id;
    ptrs_[n_] = p;
    return n_++;
}

}  // namespace lynd

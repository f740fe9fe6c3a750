// Pending timers in expiry order, intrusive and fixed: arming a timer never
// allocates. Equal expiries fire in the order they were armed.
#pragma once
#include <cstdint>

#include "platform/loop.h"

namespace lynd {

class TimerQueue {
public:
    void add(LoopTimer* t, int64_t expires_ms);
    // False when t was not pending.
    bool remove(LoopTimer* t);
    LoopTimer* first() const { return head_; }
    // Unlinks and returns the first timer due at now_ms, or null.
    LoopTimer* pop_due(int64_t now_ms);
    void clear();

private:
    LoopTimer* head_ = nullptr;
};

}  // namespace lynd

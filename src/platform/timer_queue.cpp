#include "platform/timer_queue.h"

namespace lynd {

void TimerQueue::add(LoopTimer* t, int64_t expires_ms) {
    remove(t);
    t->expires_ms = expires_ms;
    t->pending = true;
    LoopTimer** link = &head_;
    while (*link != nullptr && (*link)->expires_ms <= expires_ms)
        link = &(*link)->next;
    t->next = *link;
    *link = t;
}

bool TimerQueue::remove(LoopTimer* t) {
    if (!t->pending)
        return false;
    for (LoopTimer** link = &head_; *link != nullptr; link = &(*link)->next) {
        if (*link == t) {
            *link = t->next;
            break;
        }
    }
    t->next = nullptr;
    t->pending = false;
    return true;
}

LoopTimer* TimerQueue::pop_due(int64_t now_ms) {
    LoopTimer* t = head_;
    if (t == nullptr || t->expires_ms > now_ms)
        return nullptr;
    remove(t);
    return t;
}

void TimerQueue::clear() {
    while (head_ != nullptr)
        remove(head_);
}

}  // namespace lynd

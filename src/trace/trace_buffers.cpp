#include "trace/trace_buffers.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace lynd {

namespace {

constexpr size_t kPendingFirst = 64 * 1024;

}  // namespace

TracePending::~TracePending() { std::free(data_); }

void TracePending::keep(const char* data, size_t len) {
    if (lost_)
        return;
    if (len > cap_ - len_) {
        size_t want = cap_ > 0 ? cap_ : kPendingFirst;
        while (want - len_ < len && want < TRACE_PENDING_MAX)
            want *= 2;
        want = want < TRACE_PENDING_MAX ? want : TRACE_PENDING_MAX;
        void* grown = want - len_ >= len ? std::realloc(data_, want) : nullptr;
        if (grown == nullptr) {
            lost_ = true;
            return;
        }
        data_ = static_cast<char*>(grown);
        cap_ = want;
    }
    std::memcpy(data_ + len_, data, len);
    len_ += len;
}

void TracePending::clear() {
    std::free(data_);
    data_ = nullptr;
    len_ = 0;
    cap_ = 0;
    lost_ = false;
}

TraceBuffers* trace_buffers_take() {
    auto* b = new (std::nothrow) TraceBuffers;
    if (b == nullptr)
        return nullptr;
    if (!b->line.has_buffer() || !b->header.has_buffer() || !b->reply.has_buffer() || !b->msg.has_buffer()) {
        delete b;
        return nullptr;
    }
    return b;
}

void trace_buffers_give(TraceBuffers* b) { delete b; }

size_t trace_buffers_bytes() { return sizeof(TraceBuffers) + 2 * TRACE_LINE_MAX + 2 * TRACE_REPLY_MAX; }

}  // namespace lynd

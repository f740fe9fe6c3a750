#include "targets/openwrt/blob_reply.h"

#include <cstdint>

namespace lynd {

namespace {

// blobmsg measures a nested member's name, so none may be null.
const char* name_of(const char* name) { return name != nullptr ? name : ""; }

}  // namespace

BlobReply::BlobReply(blob_buf* buf) : buf_(buf) { blob_buf_init(buf_, 0); }

void BlobReply::open_table(const char* name) {
    if (depth_ == kMaxDepth) {
        too_deep_++;
        return;
    }
    open_[depth_++] = blobmsg_open_table(buf_, name_of(name));
}

void BlobReply::open_array(const char* name) {
    if (depth_ == kMaxDepth) {
        too_deep_++;
        return;
    }
    open_[depth_++] = blobmsg_open_array(buf_, name_of(name));
}

void BlobReply::close() {
    if (too_deep_ > 0) {
        too_deep_--;
        return;
    }
    if (depth_ > 0)
        blobmsg_close_table(buf_, open_[--depth_]);
}

void BlobReply::put_string(const char* name, const char* value) {
    blobmsg_add_string(buf_, name_of(name), value != nullptr ? value : "");
}

void BlobReply::put_int(const char* name, int64_t value) {
    if (value >= INT32_MIN && value <= INT32_MAX)
        blobmsg_add_u32(buf_, name_of(name), static_cast<uint32_t>(static_cast<int32_t>(value)));
    else
        blobmsg_add_u64(buf_, name_of(name), static_cast<uint64_t>(value));
}

void BlobReply::put_bool(const char* name, bool value) { blobmsg_add_u8(buf_, name_of(name), value ? 1 : 0); }

void BlobReply::put_double(const char* name, double value) { blobmsg_add_double(buf_, name_of(name), value); }

}  // namespace lynd

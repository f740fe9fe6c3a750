// A method's reply written into a blob buffer as blobmsg, the way `ubus
// call` expects it.
#pragma once
extern "C" {
#include <libubox/blobmsg.h>
}

#include "platform/bus.h"

namespace lynd {

class BlobReply : public BusReply {
public:
    // Starts buf afresh; its memory is kept from the last reply.
    explicit BlobReply(blob_buf* buf);

    void open_table(const char* name) override;
    void open_array(const char* name) override;
    void close() override;
    void put_string(const char* name, const char* value) override;
    void put_int(const char* name, int64_t value) override;
    void put_bool(const char* name, bool value) override;
    void put_double(const char* name, double value) override;

private:
    static constexpr int kMaxDepth = 8;

    blob_buf* buf_;
    void* open_[kMaxDepth] = {};
    int depth_ = 0;
    int too_deep_ = 0;  // nesting past kMaxDepth, dropped
};

}  // namespace lynd

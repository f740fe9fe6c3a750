#include "targets/openwrt/ubus_message.h"

extern "C" {
#include <libubox/blobmsg.h>
}

namespace lynd {

namespace {

BusAttr attr_from_blob(blob_attr* a) {
    BusAttr out{blobmsg_name(a), static_cast<BusType>(blob_id(a)), nullptr, 0, 0.0};
    switch (blob_id(a)) {
    case BLOBMSG_TYPE_STRING:
        out.str = blobmsg_get_string(a);
        break;
    case BLOBMSG_TYPE_INT8:
        out.i = blobmsg_get_u8(a);
        break;
    case BLOBMSG_TYPE_INT16:
        out.i = static_cast<int16_t>(blobmsg_get_u16(a));
        break;
    case BLOBMSG_TYPE_INT32:
        out.i = static_cast<int32_t>(blobmsg_get_u32(a));
        break;
    case BLOBMSG_TYPE_INT64:
        out.i = static_cast<int64_t>(blobmsg_get_u64(a));
        break;
    case BLOBMSG_TYPE_DOUBLE:
        out.d = blobmsg_get_double(a);
        break;
    default:
        break;
    }
    return out;
}

}  // namespace

void ubus_message_from_blob(const void* data, size_t len, BusMessage* out) {
    *out = BusMessage{nullptr, 0, false};
    if (data == nullptr)
        return;
    blob_attr* a;
    size_t rem = len;
    __blob_for_each_attr(a, const_cast<void*>(data), rem) {
        if (!blobmsg_check_attr_len(a, false, rem)) {
            out->malformed = true;
            return;
        }
        if (blob_is_extended(a))
            out->count++;
    }
    out->raw = data;
    out->raw_len = len;
    out->walk = ubus_message_walk;
}

// Only a message ubus_message_from_blob has checked is walked.
bool ubus_message_walk(const void* raw, size_t len, size_t* pos, BusAttr* out) {
    auto* base = static_cast<const char*>(raw);
    while (*pos + sizeof(blob_attr) <= len) {
        auto* a = reinterpret_cast<blob_attr*>(const_cast<char*>(base) + *pos);
        size_t step = blob_pad_len(a);
        if (step == 0 || step > len - *pos)
            return false;
        *pos += step;
        if (blob_is_extended(a)) {
            *out = attr_from_blob(a);
            return true;
        }
    }
    return false;
}

}  // namespace lynd

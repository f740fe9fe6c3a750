#include "trace/rec_krel.h"

#include "bridge/hybrid_tables.h"
#include "bridge/port_inventory.h"
#include "trace/krel_requests.h"
#include "trace/trace_order.h"
#include "trace/trace_sink.h"

namespace lynd {

int RecKrel::write(const KrelArgs& a, int rc) {
    TraceLine& l = trace_begin("krel");
    req_krel(l, a);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

int RecKrel::size_of(const void* payload) const {
    for (const auto& b : buffers_)
        if (b.payload == payload)
            return b.size;
    return 0;
}

void* RecKrel::bridgeAllocTableBuf(int size, const char* bridge_name) {
    void* p = in_->bridgeAllocTableBuf(size, bridge_name);
    for (auto& b : buffers_)
        if (b.payload == nullptr && p != nullptr) {
            b = Buffer{p, size};
            break;
        }
    TraceLine& l = trace_begin("k_alloc");
    l.num("size", size);
    l.str("br", bridge_name);
    l.num("rc", p != nullptr ? 1 : 0);
    trace_emit();
    return p;
}

void RecKrel::bridgeFreeTableBuf(void* payload) {
    for (auto& b : buffers_)
        if (b.payload == payload)
            b = Buffer{};
    in_->bridgeFreeTableBuf(payload);
}

int RecKrel::bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags) {
    TraceLine& l = trace_begin("k_table");
    l.str("br", bridge_name);
    l.num("type", table_type);
    l.num("count", *count);
    l.num("flags", flags);
    int rc = in_->bridgeTableAction(bridge_name, table_type, count, buf, flags);
    l.num("rc", rc);
    l.num("got", *count);
    int entry = lynd_table_entry_size(table_type);
    int room = entry > 0 ? size_of(buf) / entry : 0;
    int n = *count < 0 ? 0 : (*count > room ? room : *count);
    if (rc == 0)
        trace_hex_ordered(l, "data", trace_table_bytes(table_type), buf, static_cast<size_t>(n) * static_cast<size_t>(entry));
    trace_emit();
    return rc;
}

int RecKrel::netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) {
    // The buffer is the message header and then size bytes of payload.
    size_t len = static_cast<size_t>(KREL_MSG_HEADER) + static_cast<size_t>(size > 0 ? size : 0);
    TraceLine& l = trace_begin("k_nlmsg");
    l.num("type", msg_type);
    l.num("size", size);
    l.num("proto", protocol);
    int rc = in_->netlink_msg(msg_type, buf, size, protocol);
    l.num("rc", rc);
    trace_hex_ordered(l, "data", TraceBytes::PORT_REPLY, buf, len);
    trace_emit();
    return rc;
}

}  // namespace lynd

#include "sim/desk/replay_krel.h"

#include <cstdlib>
#include <cstring>

#include "bridge/port_inventory.h"
#include "trace/krel_requests.h"
#include "trace/trace_order.h"

namespace lynd {

ReplayKrel::~ReplayKrel() {
    for (auto& b : buffers_)
        std::free(static_cast<unsigned char*>(b.first) - KREL_MSG_HEADER);
}

int ReplayKrel::write(const KrelArgs& a, int) {
    TraceLine& l = tape_->begin("krel");
    req_krel(l, a);
    const TraceRecord* r = tape_->take(l);
    return r != nullptr ? static_cast<int>(r->num("rc")) : 0;
}

void* ReplayKrel::bridgeAllocTableBuf(int size, const char* bridge_name) {
    TraceLine& l = tape_->begin("k_alloc");
    l.num("size", size);
    l.str("br", bridge_name);
    const TraceRecord* r = tape_->take(l);
    if (r == nullptr || r->num("rc") == 0 || size < 0)
        return nullptr;
    // Room for the message header in front, as the library keeps it.
    auto* area = static_cast<unsigned char*>(std::calloc(1, static_cast<size_t>(size) + KREL_MSG_HEADER));
    if (area == nullptr)
        return nullptr;
    buffers_[area + KREL_MSG_HEADER] = size;
    return area + KREL_MSG_HEADER;
}

void ReplayKrel::bridgeFreeTableBuf(void* payload) {
    auto it = buffers_.find(payload);
    if (it == buffers_.end())
        return;
    std::free(static_cast<unsigned char*>(payload) - KREL_MSG_HEADER);
    buffers_.erase(it);
}

int ReplayKrel::bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags) {
    TraceLine& l = tape_->begin("k_table");
    l.str("br", bridge_name);
    l.num("type", table_type);
    l.num("count", *count);
    l.num("flags", flags);
    const TraceRecord* r = tape_->take(l);
    if (r == nullptr)
        return -1;
    int rc = static_cast<int>(r->num("rc", -1));
    *count = static_cast<int>(r->num("got"));
    auto it = buffers_.find(buf);
    std::string data = r->bytes("data");
    size_t room = it != buffers_.end() ? static_cast<size_t>(it->second) : 0;
    size_t n = data.size() < room ? data.size() : room;
    std::memcpy(buf, data.data(), n);
    trace_bytes_to_host(trace_table_bytes(table_type), buf, n);
    return rc;
}

int ReplayKrel::netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) {
    TraceLine& l = tape_->begin("k_nlmsg");
    l.num("type", msg_type);
    l.num("size", size);
    l.num("proto", protocol);
    const TraceRecord* r = tape_->take(l);
    if (r == nullptr)
        return -1;
    std::string data = r->bytes("data");
    size_t room = static_cast<size_t>(KREL_MSG_HEADER) + static_cast<size_t>(size > 0 ? size : 0);
    size_t n = data.size() < room ? data.size() : room;
    std::memcpy(buf, data.data(), n);
    trace_bytes_to_host(TraceBytes::PORT_REPLY, buf, n);
    return static_cast<int>(r->num("rc", -1));
}

}  // namespace lynd

// A stand-in for the vendor bridge library, for running the device binary
// on a PC: every call is printed with its arguments on standard error, the
// tables are empty, and each call's result can be set in the environment:
// LYND_KREL_<call>=<result> (bridgeSetEventInfo=-1, say). netlink_msg with
// message type 0 asks whether a bridge is active: LYND_KREL_netlink_msg.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/krel_args.h"
#include "targets/openwrt/krel.h"

namespace {

constexpr size_t kHeader = 52;
constexpr size_t kPayloadLenOffset = 44;

int result_of(const char* call) {
    char name[64];
    std::snprintf(name, sizeof name, "LYND_KREL_%s", call);
    const char* v = std::getenv(name);
    return v != nullptr ? std::atoi(v) : 0;
}

const char* s(const char* text) { return text != nullptr ? text : "(null)"; }

void mac(char* out, const unsigned char* m) {
    if (m == nullptr)
        std::snprintf(out, 18, "(null)");
    else
        std::snprintf(out, 18, "%02x:%02x:%02x:%02x:%02x:%02x", m[0], m[1], m[2], m[3], m[4], m[5]);
}

int logged(const char* call, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
int logged(const char* call, const char* fmt, ...) {
    int rc = result_of(call);
    char args[256];
    va_list ap;
    va_start(ap, fmt);
    std::vsnprintf(args, sizeof args, fmt, ap);
    va_end(ap);
    std::fprintf(stderr, "krel-stub: %s(%s) = %d\n", call, args, rc);
    return rc;
}

// A write's arguments in the record's order: bridge, interfaces, MACs, numbers.
int logged_write(const lynd::KrelArgs& a) {
    char c[18], i[18];
    mac(c, a.mac);
    mac(i, a.id);
    char nums[80] = "";  // three 64-bit numbers fit
    for (int k = 0, at = 0; k < a.nums && k < 3; k++)
        at += std::snprintf(nums + at, sizeof nums - at, ", %lld", static_cast<long long>(a.num[k]));
    return logged(a.fn, "%s%s%s%s%s%s%s%s%s%s", s(a.br), a.ifname ? ", " : "", a.ifname ? a.ifname : "",
                  a.other ? ", " : "", a.other ? a.other : "", a.mac ? ", " : "", a.mac ? c : "", a.id ? ", " : "",
                  a.id ? i : "", nums);
}

}  // namespace

extern "C" {

void* bridgeAllocTableBuf(int size, const char* bridge_name) {
    if (logged("bridgeAllocTableBuf", "%d, %s", size, s(bridge_name)) != 0 || size < 0)
        return nullptr;
    auto* area = static_cast<unsigned char*>(std::calloc(1, static_cast<size_t>(size) + kHeader));
    return area != nullptr ? area + kHeader : nullptr;
}

void bridgeFreeTableBuf(void* payload) {
    (void)logged("bridgeFreeTableBuf", "%p", payload);
    if (payload != nullptr)
        std::free(static_cast<unsigned char*>(payload) - kHeader);
}

int bridgeTableAction(const char* bridge_name, int table_type, int* count, void*, int flags) {
    int rc = logged("bridgeTableAction", "%s, %d, %d, %d", s(bridge_name), table_type, count ? *count : -1, flags);
    if (rc == 0 && count != nullptr)
        *count = 0;
    return rc;
}

int netlink_msg(int msg_type, unsigned char* buf, int size, int protocol) {
    int rc = logged("netlink_msg", "%d, %d, %d", msg_type, size, protocol);
    if (rc == 0 && buf != nullptr && size >= 0) {
        uint32_t none = 0;  // no ports
        std::memcpy(buf + kPayloadLenOffset, &none, sizeof none);
    }
    return rc;
}

#define LYND_KREL_STUB(name, params, args, steers) \
    int name params { return logged_write(lynd::krel_args{#name} args); }
LYND_KREL_WRITES(LYND_KREL_STUB)
#undef LYND_KREL_STUB

}  // extern "C"

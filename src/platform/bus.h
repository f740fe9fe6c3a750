// The bus seam. Messages reach the daemon as a typed attribute list that
// mirrors blobmsg, so one decoder serves ubus on the router and the
// simulator's timeline alike.
#pragma once
#include <cstddef>
#include <cstdint>

namespace lynd {

// Same numbering as blobmsg's types; a boolean travels as INT8.
enum class BusType : uint8_t {
    UNSPEC = 0,
    ARRAY = 1,
    TABLE = 2,
    STRING = 3,
    INT64 = 4,
    INT32 = 5,
    INT16 = 6,
    INT8 = 7,
    DOUBLE = 8,
};
constexpr BusType BUS_TYPE_BOOL = BusType::INT8;

// Top-level attributes of one message; names and strings point into the
// sender's storage and live only during the delivery.
struct BusAttr {
    const char* name;
    BusType type;
    const char* str;  // STRING
    int64_t i;        // INT8/16/32/64
    double d;         // DOUBLE
};

// The next top-level attribute of a message kept in its sender's own
// encoding, from *pos on (0 at the start); false at the end.
using BusAttrWalk = bool (*)(const void* raw, size_t len, size_t* pos, BusAttr* out);

// Either a list of attributes, or the sender's encoding and a walk over it:
// nothing is copied, so no message is too long to be read whole.
struct BusMessage {
    const BusAttr* attrs;
    size_t count;    // attributes in the message, in either form
    bool malformed;  // an attribute failed its length or type check
    const void* raw = nullptr;
    size_t raw_len = 0;
    BusAttrWalk walk = nullptr;
};

struct bus_policy {
    const char* name;
    BusType type;
};

// Fills tb[i] with the first attribute named and typed as policy[i], over
// the whole message; an attribute of another type is ignored. -1 for an empty or malformed
// message, as blobmsg_parse does.
// found has room for policy_len attributes: tb[i] points into it.
int bus_parse(const bus_policy* policy, int policy_len, const BusAttr** tb, BusAttr* found, const BusMessage& msg);

using BusEventHandler = void (*)(void* ctx, const char* type, const BusMessage& msg);
// Called once when the connection to the bus daemon is lost.
using BusLostHandler = void (*)(void* ctx);

class Bus {
public:
    virtual ~Bus() = default;
    // 0 on success.
    virtual int connect() = 0;
    // Delivers every event whose name matches pattern ("lynd.*"); 0 or an error code.
    virtual int register_event_handler(const char* pattern, BusEventHandler handler, void* ctx) = 0;
    virtual const char* strerror(int error) = 0;
    virtual void add_to_loop() = 0;
    virtual void free() = 0;
    virtual void set_lost_handler(BusLostHandler handler, void* ctx) = 0;
    // Drops what is left of the old connection and connects anew: 0 when
    // back (handlers must then be registered again), else an error code.
    virtual int reconnect() = 0;
};

}  // namespace lynd

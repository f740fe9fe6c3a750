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

// The first attribute named name, whatever its type: false when none.
bool bus_find(const BusMessage& msg, const char* name, BusAttr* out);

// Status codes of a method call, numbered as ubus numbers them.
enum BusStatus : int {
    BUS_STATUS_OK = 0,
    BUS_STATUS_INVALID_COMMAND = 1,
    BUS_STATUS_INVALID_ARGUMENT = 2,
    BUS_STATUS_METHOD_NOT_FOUND = 3,
    BUS_STATUS_NOT_FOUND = 4,
    BUS_STATUS_UNKNOWN_ERROR = 9,
    BUS_STATUS_CONNECTION_FAILED = 10,
};

// A method's reply under construction. Tables and arrays nest; inside an
// array the names are ignored. An integer travels as INT32 when it fits,
// else as INT64, as `ubus call` prints numbers.
class BusReply {
public:
    virtual ~BusReply() = default;
    virtual void open_table(const char* name) = 0;
    virtual void open_array(const char* name) = 0;
    virtual void close() = 0;
    virtual void put_string(const char* name, const char* value) = 0;
    virtual void put_int(const char* name, int64_t value) = 0;
    virtual void put_bool(const char* name, bool value) = 0;
    virtual void put_double(const char* name, double value) = 0;
};

// Limits of one object, so that a back-end can keep it in fixed storage.
constexpr int BUS_MAX_METHODS = 8;
constexpr int BUS_MAX_METHOD_ARGS = 4;

struct BusMethod {
    const char* name;
    const bus_policy* args;  // what a listing shows; the handler checks them
    int n_args;
};

// Answers one call: a BusStatus, with the reply filled when BUS_STATUS_OK.
using BusMethodHandler = int (*)(void* ctx, const char* method, const BusMessage& args, BusReply& reply);

// An object others call; it and its tables must outlive the connection.
struct BusObject {
    const char* name;
    const BusMethod* methods;
    int n_methods;
    BusMethodHandler handler;
    void* ctx;
};

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
    // back (handlers and objects must then be added again), else an error code.
    virtual int reconnect() = 0;
    // Publishes object on the connection: 0, or an error code. One object
    // per connection; more than BUS_MAX_METHODS methods, or more than
    // BUS_MAX_METHOD_ARGS arguments to one, are refused.
    virtual int add_object(const BusObject& object) = 0;
};

}  // namespace lynd

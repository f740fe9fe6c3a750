// The bus, recorded: events and method calls as they are delivered, each
// reply as an output, and the connection's results.
#pragma once
#include "platform/bus.h"
#include "trace/bus_requests.h"

namespace lynd {

class RecBus : public Bus {
public:
    void set_inner(Bus* inner) { in_ = inner; }
    Bus* inner() const { return in_; }
    // The recorder's buffers for a reply and a message (null: none, and
    // calls go straight through).
    void set_scratch(TraceReply* reply, TraceReply* msg) {
        reply_ = reply;
        msg_ = msg;
    }

    int connect() override;
    int register_event_handler(const char* pattern, BusEventHandler handler, void* ctx) override;
    const char* strerror(int error) override;
    void add_to_loop() override;
    void free() override;
    void set_lost_handler(BusLostHandler handler, void* ctx) override;
    int reconnect() override;
    int add_object(const BusObject& object) override;

private:
    static void on_event(void* ctx, const char* type, const BusMessage& msg);
    static void on_lost(void* ctx);
    static int on_call(void* ctx, const char* method, const BusMessage& args, BusReply& reply);

    Bus* in_ = nullptr;
    BusEventHandler event_ = nullptr;
    void* event_ctx_ = nullptr;
    BusLostHandler lost_ = nullptr;
    void* lost_ctx_ = nullptr;
    BusObject object_{};
    BusObject inner_object_{};
    TraceReply* reply_ = nullptr;
    TraceReply* msg_ = nullptr;
};

}  // namespace lynd

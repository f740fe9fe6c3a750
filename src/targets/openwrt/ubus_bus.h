// The bus seam on the router: libubus events, and a context that can be
// dropped and made anew when ubusd restarts.
#pragma once
extern "C" {
#include <libubus.h>
}

#include "platform/bus.h"

namespace lynd {

class UbusBus : public Bus {
public:
    int connect() override;
    int register_event_handler(const char* pattern, BusEventHandler handler, void* ctx) override;
    const char* strerror(int error) override;
    void add_to_loop() override;
    void free() override;
    void set_lost_handler(BusLostHandler handler, void* ctx) override;
    int reconnect() override;

private:
    static void receive(ubus_context* ctx, ubus_event_handler* ev, const char* type, blob_attr* msg);
    static void lost(ubus_context* ctx);

    // The libubus records come first, so the callbacks get back to their bus.
    struct HandlerRecord {
        ubus_event_handler ev;
        UbusBus* self;
    };
    struct ContextRecord {
        ubus_context ctx;
        UbusBus* self;
    };

    ContextRecord context_{};
    bool connected_ = false;
    HandlerRecord record_{};
    BusEventHandler handler_ = nullptr;
    void* handler_ctx_ = nullptr;
    BusLostHandler lost_ = nullptr;
    void* lost_ctx_ = nullptr;
};

}  // namespace lynd

// The bus seam on the router: libubus events.
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

private:
    static void receive(ubus_context* ctx, ubus_event_handler* ev, const char* type, blob_attr* msg);

    // The libubus record comes first, so receive() gets back to its bus.
    struct HandlerRecord {
        ubus_event_handler ev;
        UbusBus* self;
    };

    ubus_context* ctx_ = nullptr;
    HandlerRecord record_{};
    BusEventHandler handler_ = nullptr;
    void* handler_ctx_ = nullptr;
};

}  // namespace lynd

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
    // socket: ubusd's socket, or null for the system's.
    explicit UbusBus(const char* socket = nullptr) : socket_(socket) {}

    int connect() override;
    int register_event_handler(const char* pattern, BusEventHandler handler, void* ctx) override;
    const char* strerror(int error) override;
    void add_to_loop() override;
    void free() override;
    void set_lost_handler(BusLostHandler handler, void* ctx) override;
    int reconnect() override;
    int add_object(const BusObject& object) override;

private:
    static int invoke(ubus_context* ctx, ubus_object* obj, ubus_request_data* req, const char* method,
                      blob_attr* msg);
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
    struct ObjectRecord {
        ubus_object obj;
        UbusBus* self;
    };

    const char* socket_;
    ContextRecord context_{};
    bool connected_ = false;
    HandlerRecord record_{};
    BusEventHandler handler_ = nullptr;
    void* handler_ctx_ = nullptr;
    BusLostHandler lost_ = nullptr;
    void* lost_ctx_ = nullptr;

    // The one object, its type and method table in fixed storage; the reply
    // buffer keeps its memory from call to call.
    const BusObject* object_ = nullptr;
    ObjectRecord record_obj_{};
    ubus_object_type type_{};
    ubus_method methods_[BUS_MAX_METHODS]{};
    blobmsg_policy policies_[BUS_MAX_METHODS][BUS_MAX_METHOD_ARGS]{};
    blob_buf reply_{};
};

}  // namespace lynd

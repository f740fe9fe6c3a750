#include "targets/openwrt/ubus_bus.h"

#include "targets/openwrt/ubus_message.h"

namespace lynd {

int UbusBus::connect() {
    ctx_ = ubus_connect(nullptr);
    return ctx_ != nullptr ? 0 : -1;
}

int UbusBus::register_event_handler(const char* pattern, BusEventHandler handler, void* ctx) {
    handler_ = handler;
    handler_ctx_ = ctx;
    record_ = HandlerRecord{};
    record_.ev.cb = receive;
    record_.self = this;
    return ubus_register_event_handler(ctx_, &record_.ev, pattern);
}

const char* UbusBus::strerror(int error) { return ubus_strerror(error); }

void UbusBus::add_to_loop() { ubus_add_uloop(ctx_); }

void UbusBus::free() {
    if (ctx_ != nullptr)
        ubus_free(ctx_);
    ctx_ = nullptr;
}

void UbusBus::receive(ubus_context*, ubus_event_handler* ev, const char* type, blob_attr* msg) {
    UbusBus* self = reinterpret_cast<HandlerRecord*>(ev)->self;
    BusMessage m;
    ubus_message_from_blob(msg != nullptr ? blob_data(msg) : nullptr, msg != nullptr ? blob_len(msg) : 0, &m);
    if (self->handler_ != nullptr)
        self->handler_(self->handler_ctx_, type, m);
}

}  // namespace lynd

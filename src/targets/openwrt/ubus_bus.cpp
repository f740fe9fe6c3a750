#include "targets/openwrt/ubus_bus.h"

#include "targets/openwrt/ubus_message.h"

namespace lynd {

int UbusBus::connect() {
    context_.self = this;
    if (ubus_connect_ctx(&context_.ctx, nullptr) != 0)
        return -1;
    connected_ = true;
    context_.ctx.connection_lost = lost;
    return 0;
}

int UbusBus::register_event_handler(const char* pattern, BusEventHandler handler, void* ctx) {
    handler_ = handler;
    handler_ctx_ = ctx;
    record_ = HandlerRecord{};  // a new context knows no earlier object id
    record_.ev.cb = receive;
    record_.self = this;
    return ubus_register_event_handler(&context_.ctx, &record_.ev, pattern);
}

const char* UbusBus::strerror(int error) { return ubus_strerror(error); }

void UbusBus::add_to_loop() { ubus_add_uloop(&context_.ctx); }

void UbusBus::free() {
    if (connected_)
        ubus_shutdown(&context_.ctx);
    connected_ = false;
}

void UbusBus::set_lost_handler(BusLostHandler handler, void* ctx) {
    lost_ = handler;
    lost_ctx_ = ctx;
}

int UbusBus::reconnect() {
    free();
    return connect() == 0 ? 0 : UBUS_STATUS_CONNECTION_FAILED;
}

// The socket leaves the loop, which would otherwise wake on its end of file
// again and again; the daemon decides when to try anew.
void UbusBus::lost(ubus_context* ctx) {
    UbusBus* self = reinterpret_cast<ContextRecord*>(ctx)->self;
    if (ctx->sock.registered)
        uloop_fd_delete(&ctx->sock);
    if (self->lost_ != nullptr)
        self->lost_(self->lost_ctx_);
}

void UbusBus::receive(ubus_context*, ubus_event_handler* ev, const char* type, blob_attr* msg) {
    UbusBus* self = reinterpret_cast<HandlerRecord*>(ev)->self;
    BusMessage m;
    ubus_message_from_blob(msg != nullptr ? blob_data(msg) : nullptr, msg != nullptr ? blob_len(msg) : 0, &m);
    if (self->handler_ != nullptr)
        self->handler_(self->handler_ctx_, type, m);
}

}  // namespace lynd

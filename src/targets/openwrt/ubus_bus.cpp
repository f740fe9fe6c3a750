#include "targets/openwrt/ubus_bus.h"

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>

#include "targets/openwrt/blob_reply.h"
#include "targets/openwrt/ubus_message.h"

namespace lynd {

int UbusBus::connect() {
    context_.self = this;
    if (ubus_connect_ctx(&context_.ctx, socket_) != 0)
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

namespace {

constexpr int kDrainMs = 200;

// ubusd stops reading a client once it sees its end of file, so a reply
// written just before the close (the record call's, whose run restarts at
// once) would be lost: wait, for a bounded time, until ubusd has read all.
void drain(int fd) {
    for (int waited = 0; waited < kDrainMs; waited += 5) {
        int unread = 0;
        if (ioctl(fd, SIOCOUTQ, &unread) != 0 || unread <= 0)
            return;
        (void)poll(nullptr, 0, 5);
    }
}

}  // namespace

void UbusBus::free() {
    if (connected_) {
        drain(context_.ctx.sock.fd);
        ubus_shutdown(&context_.ctx);
    }
    connected_ = false;
    blob_buf_free(&reply_);
    reply_ = blob_buf{};
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

// A new connection knows no object yet, so the record starts afresh.
int UbusBus::add_object(const BusObject& object) {
    if (object.n_methods < 0 || object.n_methods > BUS_MAX_METHODS)
        return UBUS_STATUS_INVALID_ARGUMENT;
    for (int i = 0; i < object.n_methods; i++) {
        const BusMethod& m = object.methods[i];
        if (m.n_args < 0 || m.n_args > BUS_MAX_METHOD_ARGS)
            return UBUS_STATUS_INVALID_ARGUMENT;
        for (int k = 0; k < m.n_args; k++) {
            policies_[i][k].name = m.args[k].name;
            policies_[i][k].type = static_cast<enum blobmsg_type>(m.args[k].type);
        }
        methods_[i] = ubus_method{};
        methods_[i].name = m.name;
        methods_[i].handler = invoke;
        methods_[i].policy = policies_[i];
        methods_[i].n_policy = m.n_args;
    }
    object_ = &object;
    type_ = ubus_object_type{object.name, 0, methods_, object.n_methods};
    record_obj_ = ObjectRecord{};
    record_obj_.self = this;
    record_obj_.obj.name = object.name;
    record_obj_.obj.type = &type_;
    record_obj_.obj.methods = methods_;
    record_obj_.obj.n_methods = object.n_methods;
    return ubus_add_object(&context_.ctx, &record_obj_.obj);
}

int UbusBus::invoke(ubus_context* ctx, ubus_object* obj, ubus_request_data* req, const char* method,
                    blob_attr* msg) {
    UbusBus* self = reinterpret_cast<ObjectRecord*>(obj)->self;
    const BusObject* o = self->object_;
    BusMessage m;
    ubus_message_from_blob(msg != nullptr ? blob_data(msg) : nullptr, msg != nullptr ? blob_len(msg) : 0, &m);
    BlobReply reply(&self->reply_);
    int rc = o->handler(o->ctx, method, m, reply);
    if (rc == UBUS_STATUS_OK)
        rc = ubus_send_reply(ctx, req, self->reply_.head);
    return rc;
}

}  // namespace lynd

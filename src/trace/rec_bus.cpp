#include "trace/rec_bus.h"

#include <cstring>

#include "trace/trace_sink.h"

namespace lynd {

namespace {

int record_rc(const char* kind, int rc) {
    TraceLine& l = trace_begin(kind);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

}  // namespace

int RecBus::connect() { return record_rc("b_connect", in_->connect()); }

void RecBus::on_event(void* ctx, const char* type, const BusMessage& msg) {
    auto* self = static_cast<RecBus*>(ctx);
    if (self->msg_ != nullptr) {
        TraceLine& l = trace_begin("event");
        l.str("name", type);
        bus_msg_json(l, "msg", msg, *self->msg_);
        trace_emit();
    }
    self->event_(self->event_ctx_, type, msg);
}

int RecBus::register_event_handler(const char* pattern, BusEventHandler handler, void* ctx) {
    event_ = handler;
    event_ctx_ = ctx;
    int rc = in_->register_event_handler(pattern, on_event, this);
    TraceLine& l = trace_begin("b_handler");
    l.str("pattern", pattern);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

const char* RecBus::strerror(int error) {
    const char* s = in_->strerror(error);
    TraceLine& l = trace_begin("b_strerror");
    l.num("error", error);
    l.str("rc", s);
    trace_emit();
    return s;
}

void RecBus::add_to_loop() {
    in_->add_to_loop();
    trace_begin("b_loop");
    trace_emit();
}

void RecBus::free() {
    in_->free();
    trace_begin("b_free");
    trace_emit();
}

void RecBus::on_lost(void* ctx) {
    auto* self = static_cast<RecBus*>(ctx);
    trace_begin("lost");
    trace_emit();
    self->lost_(self->lost_ctx_);
}

void RecBus::set_lost_handler(BusLostHandler handler, void* ctx) {
    lost_ = handler;
    lost_ctx_ = ctx;
    in_->set_lost_handler(handler != nullptr ? on_lost : nullptr, this);
    trace_begin("b_lost");
    trace_emit();
}

int RecBus::reconnect() { return record_rc("b_reconnect", in_->reconnect()); }

int RecBus::on_call(void* ctx, const char* method, const BusMessage& args, BusReply& reply) {
    auto* self = static_cast<RecBus*>(ctx);
    // The trace ended: the object stays registered through here.
    if (self->reply_ == nullptr || self->msg_ == nullptr)
        return self->inner_object_.handler(self->inner_object_.ctx, method, args, reply);
    TraceLine& l = trace_begin("call");
    l.str("method", method);
    bus_msg_json(l, "args", args, *self->msg_);
    trace_emit();
    TraceReply* scratch = self->reply_;
    scratch->reset(&reply);
    trace_hold();
    int rc = self->inner_object_.handler(self->inner_object_.ctx, method, args, *scratch);
    TraceLine& r = trace_begin("reply");
    r.num("status", rc);
    const char* text = scratch->text();
    if (rc == BUS_STATUS_OK)
        r.raw("data", text, std::strlen(text));
    trace_emit();
    trace_unhold();
    return rc;
}

int RecBus::add_object(const BusObject& object) {
    inner_object_ = object;
    object_ = object;
    object_.handler = on_call;
    object_.ctx = this;
    int rc = in_->add_object(object_);
    TraceLine& l = trace_begin("b_object");
    l.str("name", object.name);
    l.num("rc", rc);
    trace_emit();
    return rc;
}

}  // namespace lynd

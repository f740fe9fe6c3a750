#include "sim/desk/replay_bus.h"

#include <cstring>

#include "daemon/replies/status_replies.h"
#include "trace/bus_requests.h"

namespace lynd {

namespace {

// The source revision a reply names is the build's, not a decision: a trace
// from the router replays on a PC built from another revision.
std::string same_revision(const std::string& reply, const TraceRecord* recorded) {
    std::string ours = std::string("\"revision\":\"") + lynd_revision() + "\"";
    size_t at = reply.find(ours);
    json_object* data = recorded != nullptr ? recorded->get("data") : nullptr;
    json_object* rev = nullptr;
    if (at == std::string::npos || data == nullptr || !json_object_object_get_ex(data, "revision", &rev))
        return reply;
    std::string theirs = std::string("\"revision\":\"") + json_object_get_string(rev) + "\"";
    return reply.substr(0, at) + theirs + reply.substr(at + ours.size());
}

}  // namespace

BusMessage replay_message(json_object* list, std::vector<BusAttr>* attrs, bool malformed) {
    attrs->clear();
    size_t n = list != nullptr && json_object_is_type(list, json_type_array) ? json_object_array_length(list) : 0;
    for (size_t i = 0; i < n; i++) {
        json_object* a = json_object_array_get_idx(list, i);
        if (!json_object_is_type(a, json_type_array) || json_object_array_length(a) < 2)
            continue;
        BusAttr attr{json_object_get_string(json_object_array_get_idx(a, 0)),
                     static_cast<BusType>(json_object_get_int(json_object_array_get_idx(a, 1))), nullptr, 0, 0};
        json_object* v = json_object_array_get_idx(a, 2);
        if (attr.type == BusType::STRING)
            attr.str = v != nullptr ? json_object_get_string(v) : "";
        else if (attr.type == BusType::DOUBLE)
            attr.d = json_object_get_double(v);
        else
            attr.i = json_object_get_int64(v);
        attrs->push_back(attr);
    }
    return BusMessage{attrs->data(), attrs->size(), malformed};
}

int ReplayBus::rc_of(const char* kind) {
    const TraceRecord* r = tape_->take(tape_->begin(kind));
    return r != nullptr ? static_cast<int>(r->num("rc", -1)) : -1;
}

int ReplayBus::connect() { return rc_of("b_connect"); }

int ReplayBus::register_event_handler(const char* pattern, BusEventHandler handler, void* ctx) {
    event_ = handler;
    event_ctx_ = ctx;
    TraceLine& l = tape_->begin("b_handler");
    l.str("pattern", pattern);
    const TraceRecord* r = tape_->take(l);
    return r != nullptr ? static_cast<int>(r->num("rc", -1)) : -1;
}

const char* ReplayBus::strerror(int error) {
    TraceLine& l = tape_->begin("b_strerror");
    l.num("error", error);
    const TraceRecord* r = tape_->take(l);
    error_text_ = r != nullptr ? r->str("rc") : "unknown error";
    return error_text_.c_str();
}

void ReplayBus::add_to_loop() { (void)tape_->take(tape_->begin("b_loop")); }

void ReplayBus::free() { (void)tape_->take(tape_->begin("b_free")); }

void ReplayBus::set_lost_handler(BusLostHandler handler, void* ctx) {
    lost_ = handler;
    lost_ctx_ = ctx;
    (void)tape_->take(tape_->begin("b_lost"));
}

int ReplayBus::reconnect() { return rc_of("b_reconnect"); }

int ReplayBus::add_object(const BusObject& object) {
    object_ = object;
    has_object_ = true;
    TraceLine& l = tape_->begin("b_object");
    l.str("name", object.name);
    const TraceRecord* r = tape_->take(l);
    return r != nullptr ? static_cast<int>(r->num("rc", -1)) : -1;
}

void ReplayBus::deliver(const TraceRecord& r) {
    if (event_ == nullptr)
        return tape_->diverge(trace_record_text(r), "no event handler registered");
    std::vector<BusAttr> attrs;
    BusMessage msg = replay_message(r.get("msg"), &attrs, r.num("malformed") != 0);
    std::string name = r.str("name");
    event_(event_ctx_, name.c_str(), msg);
}

void ReplayBus::call(const TraceRecord& r) {
    if (!has_object_)
        return tape_->diverge(trace_record_text(r), "no object on the bus");
    std::vector<BusAttr> attrs;
    BusMessage msg = replay_message(r.get("args"), &attrs, r.num("malformed") != 0);
    std::string method = r.str("method");
    static TraceReply reply;
    reply.reset(nullptr);
    int rc = object_.handler(object_.ctx, method.c_str(), msg, reply);
    TraceLine& l = tape_->begin("reply");
    l.num("status", rc);
    std::string text = same_revision(reply.text(), tape_->peek());
    if (rc == BUS_STATUS_OK)
        l.raw("data", text.data(), text.size());
    (void)tape_->take(l);
}

void ReplayBus::lost() {
    if (lost_ != nullptr)
        lost_(lost_ctx_);
}

}  // namespace lynd

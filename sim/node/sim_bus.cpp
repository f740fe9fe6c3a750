#include "sim/node/sim_bus.h"

#include <json-c/json.h>

#include <cstring>

#include "sim/node/bus_json.h"
#include "sim/node/json_reply.h"

namespace lynd {

int SimBus::connect() {
    connected_ = connect_rc_ == 0;
    return connect_rc_;
}

int SimBus::register_event_handler(const char* pattern, BusEventHandler handler, void* ctx) {
    if (register_rc_ != 0)
        return register_rc_;
    pattern_ = pattern;
    handler_ = handler;
    ctx_ = ctx;
    return 0;
}

const char* SimBus::strerror(int error) {
    // The texts ubus gives its status codes.
    static const char* const texts[] = {"Success", "Invalid command", "Invalid argument", "Method not found",
                                        "Not found", "No response", "Permission denied", "Request timed out",
                                        "Operation not supported", "Unknown error", "Connection failed"};
    if (error < 0 || error >= static_cast<int>(sizeof texts / sizeof texts[0]))
        return "Unknown error";
    return texts[error];
}

void SimBus::daemon_down() {
    daemon_up_ = false;
    bool was = connected_;
    connected_ = false;
    handler_ = nullptr;
    object_ = nullptr;
    if (was && lost_ != nullptr)
        lost_(lost_ctx_);
}

int SimBus::reconnect() {
    constexpr int kConnectionFailed = 10;
    if (!daemon_up_)
        return kConnectionFailed;
    reconnects_++;
    connected_ = true;
    return 0;
}

void SimBus::free() {
    free_count_++;
    connected_ = false;
    handler_ = nullptr;
    object_ = nullptr;
}

int SimBus::add_object(const BusObject& object) {
    if (!connected_)
        return BUS_STATUS_CONNECTION_FAILED;
    if (object.n_methods > BUS_MAX_METHODS)
        return BUS_STATUS_INVALID_ARGUMENT;
    for (int i = 0; i < object.n_methods; i++)
        if (object.methods[i].n_args > BUS_MAX_METHOD_ARGS)
            return BUS_STATUS_INVALID_ARGUMENT;
    object_ = &object;
    objects_added_++;
    return 0;
}

int SimBus::call(const std::string& object, const std::string& method, const std::string& args, std::string* reply,
                 bool pretty) {
    if (!connected_ || !has_object(object))
        return BUS_STATUS_NOT_FOUND;
    bool known = false;
    for (int i = 0; i < object_->n_methods; i++)
        known = known || method == object_->methods[i].name;
    if (!known)
        return BUS_STATUS_METHOD_NOT_FOUND;
    json_object* obj = json_tokener_parse(args.empty() ? "{}" : args.c_str());
    BusJsonMessage m;
    if (!bus_message_from_json(obj, &m)) {
        json_object_put(obj);
        return BUS_STATUS_INVALID_ARGUMENT;  // ubus refuses such text before sending it
    }
    JsonReply out;
    int rc = object_->handler(object_->ctx, method.c_str(), m.msg, out);
    json_object_put(obj);
    if (rc == BUS_STATUS_OK && reply != nullptr)
        *reply = out.text(pretty);
    return rc;
}

// A trailing '*' matches any rest of the name, as ubus patterns do.
bool SimBus::matches(const std::string& type) const {
    if (!pattern_.empty() && pattern_.back() == '*')
        return type.compare(0, pattern_.size() - 1, pattern_, 0, pattern_.size() - 1) == 0;
    return type == pattern_;
}

bool SimBus::send(const std::string& type, const BusMessage& msg) {
    if (handler_ == nullptr || !matches(type))
        return false;
    handler_(ctx_, type.c_str(), msg);
    return true;
}

bool SimBus::send(const std::string& type, const std::string& json) {
    json_object* obj = json_tokener_parse(json.c_str());
    BusJsonMessage m;
    bool ok = bus_message_from_json(obj, &m) && send(type, m.msg);
    json_object_put(obj);
    return ok;
}

}  // namespace lynd

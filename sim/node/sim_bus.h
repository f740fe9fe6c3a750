// The simulated bus: the scenario's timeline (or a test) publishes events,
// which reach the handler registered for a matching pattern.
#pragma once
#include <string>

#include "platform/bus.h"

namespace lynd {

class SimBus : public Bus {
public:
    void set_connect_result(int rc) { connect_rc_ = rc; }
    void set_register_result(int rc) { register_rc_ = rc; }
    bool connected() const { return connected_; }
    int free_count() const { return free_count_; }

    // False when nobody listens to type. json must be a JSON object's text.
    bool send(const std::string& type, const std::string& json);
    bool send(const std::string& type, const BusMessage& msg);

    // The bus daemon goes away: the connection is lost, and events sent
    // until it is back reach nobody. Back, it takes new connections.
    void daemon_down();
    void daemon_up() { daemon_up_ = true; }
    int reconnects() const { return reconnects_; }

    // Calls a method of an object on the bus, as `ubus call` does: a
    // BusStatus, with the reply's JSON text when BUS_STATUS_OK. args must be
    // a JSON object's text (empty for none).
    int call(const std::string& object, const std::string& method, const std::string& args, std::string* reply,
             bool pretty = false);
    bool has_object(const std::string& name) const { return object_ != nullptr && name == object_->name; }
    int objects_added() const { return objects_added_; }

    int connect() override;
    int register_event_handler(const char* pattern, BusEventHandler handler, void* ctx) override;
    const char* strerror(int error) override;
    void add_to_loop() override {}
    void free() override;
    void set_lost_handler(BusLostHandler handler, void* ctx) override {
        lost_ = handler;
        lost_ctx_ = ctx;
    }
    int reconnect() override;
    int add_object(const BusObject& object) override;

private:
    bool matches(const std::string& type) const;

    int connect_rc_ = 0;
    int register_rc_ = 0;
    bool connected_ = false;
    int free_count_ = 0;
    std::string pattern_;
    BusEventHandler handler_ = nullptr;
    void* ctx_ = nullptr;
    BusLostHandler lost_ = nullptr;
    void* lost_ctx_ = nullptr;
    bool daemon_up_ = true;
    int reconnects_ = 0;
    const BusObject* object_ = nullptr;
    int objects_added_ = 0;
};

}  // namespace lynd

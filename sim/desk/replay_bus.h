// The bus a replay offers: events and calls come from the record; each
// reply the daemon gives is compared with the recorded one.
#pragma once
#include <vector>

#include "platform/bus.h"
#include "sim/desk/replay_tape.h"

namespace lynd {

class ReplayBus : public Bus {
public:
    explicit ReplayBus(ReplayTape* tape) : tape_(tape) {}

    int connect() override;
    int register_event_handler(const char* pattern, BusEventHandler handler, void* ctx) override;
    const char* strerror(int error) override;
    void add_to_loop() override;
    void free() override;
    void set_lost_handler(BusLostHandler handler, void* ctx) override;
    int reconnect() override;
    int add_object(const BusObject& object) override;

    void deliver(const TraceRecord& r);
    void call(const TraceRecord& r);
    void lost();

private:
    int rc_of(const char* kind);

    ReplayTape* tape_;
    BusEventHandler event_ = nullptr;
    void* event_ctx_ = nullptr;
    BusLostHandler lost_ = nullptr;
    void* lost_ctx_ = nullptr;
    BusObject object_{};
    bool has_object_ = false;
    std::string error_text_;
};

// A recorded attribute list as the message the daemon decodes; the strings
// live in the record.
BusMessage replay_message(json_object* list, std::vector<BusAttr>* attrs, bool malformed);

}  // namespace lynd

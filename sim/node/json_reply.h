// A method's reply built as JSON, the way `ubus call` prints a blobmsg table.
#pragma once
#include <json-c/json.h>

#include <string>
#include <vector>

#include "platform/bus.h"

namespace lynd {

class JsonReply : public BusReply {
public:
    JsonReply();
    ~JsonReply() override;
    JsonReply(const JsonReply&) = delete;
    JsonReply& operator=(const JsonReply&) = delete;

    void open_table(const char* name) override;
    void open_array(const char* name) override;
    void close() override;
    void put_string(const char* name, const char* value) override;
    void put_int(const char* name, int64_t value) override;
    void put_bool(const char* name, bool value) override;
    void put_double(const char* name, double value) override;

    // The whole reply; tables and arrays left open count as closed.
    std::string text(bool pretty) const;

private:
    void put(const char* name, json_object* value);

    json_object* root_;
    std::vector<json_object*> open_;
};

}  // namespace lynd

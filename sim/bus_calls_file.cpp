#include "sim/bus_calls_file.h"

#include <json-c/json.h>

namespace lynd {

std::string bus_calls_json(const std::vector<BusCallRecord>& calls) {
    json_object* list = json_object_new_array();
    for (const auto& c : calls) {
        json_object* o = json_object_new_object();
        json_object_object_add(o, "at", json_object_new_int64(c.at_ms / 1000));
        json_object_object_add(o, "object", json_object_new_string(c.object.c_str()));
        json_object_object_add(o, "method", json_object_new_string(c.method.c_str()));
        json_object_object_add(o, "args", json_tokener_parse(c.args.c_str()));
        json_object_object_add(o, "status", json_object_new_int(c.status));
        json_object_object_add(o, "reply", c.status == 0 ? json_tokener_parse(c.reply.c_str()) : nullptr);
        json_object_array_add(list, o);
    }
    std::string text = json_object_to_json_string_ext(list, JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_SPACED);
    json_object_put(list);
    return text + "\n";
}

}  // namespace lynd

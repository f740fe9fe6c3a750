#include "sim/node/json_reply.h"

namespace lynd {

JsonReply::JsonReply() : root_(json_object_new_object()) { open_.push_back(root_); }

JsonReply::~JsonReply() { json_object_put(root_); }

void JsonReply::put(const char* name, json_object* value) {
    json_object* top = open_.back();
    if (json_object_is_type(top, json_type_array))
        json_object_array_add(top, value);
    else
        json_object_object_add(top, name != nullptr ? name : "", value);
}

void JsonReply::open_table(const char* name) {
    json_object* t = json_object_new_object();
    put(name, t);
    open_.push_back(t);
}

void JsonReply::open_array(const char* name) {
    json_object* a = json_object_new_array();
    put(name, a);
    open_.push_back(a);
}

// The root stays open: a handler that closes once too often loses nothing.
void JsonReply::close() {
    if (open_.size() > 1)
        open_.pop_back();
}

void JsonReply::put_string(const char* name, const char* value) {
    put(name, json_object_new_string(value != nullptr ? value : ""));
}

void JsonReply::put_int(const char* name, int64_t value) { put(name, json_object_new_int64(value)); }

void JsonReply::put_bool(const char* name, bool value) { put(name, json_object_new_boolean(value ? 1 : 0)); }

void JsonReply::put_double(const char* name, double value) { put(name, json_object_new_double(value)); }

std::string JsonReply::text(bool pretty) const {
    int flags = pretty ? JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_SPACED : JSON_C_TO_STRING_PLAIN;
    return json_object_to_json_string_ext(root_, flags | JSON_C_TO_STRING_NOSLASHESCAPE);
}

}  // namespace lynd

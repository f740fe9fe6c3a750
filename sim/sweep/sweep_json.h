// Reading scenario documents: a member of an object, or null.
#pragma once
#include <json-c/json.h>

namespace lynd {

inline json_object* sweep_member(json_object* o, const char* key) {
    json_object* v = nullptr;
    return o != nullptr && json_object_object_get_ex(o, key, &v) ? v : nullptr;
}

}  // namespace lynd

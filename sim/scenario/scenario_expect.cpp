#include "sim/scenario/scenario_expect.h"

namespace lynd {

namespace {

constexpr size_t kMaxName = 64;

// Every member of o as name -> value text (numbers in their JSON spelling).
bool settings_of(JsonReader& r, json_object* o, const char* what, Expectation* e) {
    if (!json_is(o, json_type_object))
        return r.fail(std::string("\"") + what + "\" must be an object");
    json_object_object_foreach(o, key, val) {
        if (json_is(val, json_type_string))
            e->settings.emplace_back(key, json_object_get_string(val));
        else if (json_is(val, json_type_int) || json_is(val, json_type_boolean))
            e->settings.emplace_back(key, std::to_string(json_object_get_int(val)));
        else
            return r.fail(std::string("\"") + what + "\" values must be strings or whole numbers");
    }
    return true;
}

void parse_bridge(JsonReader& r, json_object* o, Expectation* e) {
    e->kind = ExpectKind::BRIDGE_STATE;
    (void)json_get_string(r, o, "port", &e->port, 15);
    json_object* s = json_member(o, "settings");
    if (s == nullptr)
        r.fail("a \"bridge\" expectation needs \"settings\"");
    else
        (void)settings_of(r, s, "settings", e);
}

// The reply of the newest call of a method: its status, and the value at a
// path of member names and array indices ("paths.0.state").
void parse_reply_expectation(JsonReader& r, json_object* o, Expectation* e) {
    e->kind = ExpectKind::UBUS_REPLY;
    int64_t status = -1;
    e->value = json_get_int(r, o, "status", 0, 255, &status) ? static_cast<int>(status) : -1;
    bool has_path = json_get_string(r, o, "path", &e->port, 256);
    json_object* value = json_member(o, "equals");
    if (has_path != (value != nullptr))
        r.fail("a \"ubus_reply\" expectation gives \"path\" and \"equals\" together");
    else if (value != nullptr)
        e->equals = json_object_to_json_string_ext(value, JSON_C_TO_STRING_PLAIN);
    if (!has_path && e->value < 0 && r.ok)
        r.fail("a \"ubus_reply\" expectation needs \"status\" or \"path\" and \"equals\"");
}

}  // namespace

bool parse_state_expectation(JsonReader& r, json_object* o, Expectation* e) {
    uint8_t mac[6];
    int64_t n = 0;
    if (json_get_string(r, o, "bridge", &e->text, 15)) {
        parse_bridge(r, o, e);
    } else if (json_get_string(r, o, "wds_deleted", &e->text, kMaxName)) {
        e->kind = ExpectKind::WDS_DELETED;
        if (!json_get_mac(r, o, "wds_deleted", mac))
            r.fail("\"wds_deleted\" names a MAC");
        (void)json_get_string(r, o, "on", &e->equals, 15);
    } else if (json_object* s = json_member(o, "path_state")) {
        e->kind = ExpectKind::PATH_STATE;
        (void)settings_of(r, s, "path_state", e);
    } else if (json_get_string(r, o, "preferred", &e->equals, 15)) {
        e->kind = ExpectKind::PREFERRED;
    } else if (json_get_int(r, o, "pool", 0, 100000, &n)) {
        e->kind = ExpectKind::POOL;
        e->value = static_cast<int>(n);
    } else if (json_get_string(r, o, "ubus_reply", &e->text, kMaxName)) {
        parse_reply_expectation(r, o, e);
    } else if (json_get_int(r, o, "steering_calls", 0, 1000000, &n)) {
        e->kind = ExpectKind::STEERING;
        e->value = static_cast<int>(n);
    } else if (json_object* s = json_member(o, "samples")) {
        e->kind = ExpectKind::SAMPLES;
        (void)settings_of(r, s, "samples", e);
    } else {
        return false;
    }
    return true;
}

void parse_file_expectation(JsonReader& r, json_object* o, Expectation* e) {
    int64_t n = 0;
    bool equals = json_get_string(r, o, "equals", &e->equals, 64 * 1024);
    (void)json_get_bool(r, o, "absent", &e->absent);
    (void)json_get_bool(r, o, "json", &e->json);
    if (json_get_int(r, o, "writes", 0, 1000000, &n))
        e->writes = static_cast<int>(n);
    if (!equals && !e->absent && e->writes < 0 && !e->json)
        r.fail("a \"file\" expectation needs \"equals\", \"absent\", \"writes\" or \"json\"");
}

void parse_window(JsonReader& r, json_object* o, Expectation* e) {
    int64_t from = 0, to = -1;
    (void)json_get_int(r, o, "from", 0, INT32_MAX, &from);
    (void)json_get_int(r, o, "to", 0, INT32_MAX, &to);
    e->from_ms = from * 1000;
    e->to_ms = to < 0 ? -1 : to * 1000;
}

void parse_failure_rules(JsonReader& r, const char* call, json_object* val, Scenario* out) {
    size_t n = json_is(val, json_type_array) ? json_object_array_length(val) : 1;
    for (size_t i = 0; i < n && r.ok; i++) {
        json_object* o = json_is(val, json_type_array) ? json_object_array_get_idx(val, i) : val;
        SimFailure f;
        f.call = call;
        int64_t result = -1, from = 0, to = -1;
        if (!json_is(o, json_type_object)) {
            r.fail(std::string("failure rules of ") + call + " must be objects");
            return;
        }
        (void)json_get_int(r, o, "result", INT32_MIN, INT32_MAX, &result);
        (void)json_get_string(r, o, "port", &f.port, 15);
        (void)json_get_int(r, o, "from", 0, INT32_MAX, &from);
        (void)json_get_int(r, o, "to", 0, INT32_MAX, &to);
        f.result = static_cast<int>(result);
        f.from_ms = from * 1000;
        f.to_ms = to < 0 ? -1 : to * 1000;
        out->failure_rules.push_back(f);
    }
}

}  // namespace lynd

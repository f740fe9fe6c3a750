#include "sim/sweep/sweep_facts.h"

#include "sim/scenario/json_reader.h"

#include <algorithm>
#include <string>

namespace lynd {

namespace {

bool same_type(const std::string& pin, const std::string& type) {
    auto norm = [](const std::string& t) { return t == "2g" ? std::string("2.4g") : t; };
    return norm(pin) == norm(type);
}

}  // namespace

SweepFacts sweep_facts(json_object* doc) {
    SweepFacts f;
    json_object* config = json_member(doc, "config");
    f.duration_ms = json_object_get_int64(json_member(doc, "duration")) * 1000;
    std::vector<std::pair<std::string, std::string>> types;  // path -> type
    json_object_object_foreach(json_member(config, "interfaces"), name, conf) {
        if (json_object_get_boolean(json_member(conf, "path"))) {
            f.paths.push_back(name);
            types.emplace_back(name, json_object_get_string(json_member(conf, "type")));
        }
    }
    json_object* param = json_member(config, "param");
    if (json_object* p = json_member(param, "period"))
        f.period_ms = json_object_get_int64(p) * 1000;
    json_object* guard = json_member(param, "flap_guard");
    f.guard = guard != nullptr;
    f.moves_per_hour = static_cast<int>(json_object_get_int64(json_member(guard, "moves_per_hour")));
    int64_t hold = f.moves_per_hour > 0 ? 3600 : 0;
    for (const char* rule : {"min_dwell", "return_hold"})
        hold = std::max<int64_t>(hold, json_object_get_int64(json_member(guard, rule)));
    f.guard_hold_ms = hold * 1000;
    json_object* rules = json_member(config, "clients");
    for (size_t i = 0; rules != nullptr && i < json_object_array_length(rules); i++) {
        json_object* r = json_object_array_get_idx(rules, i);
        std::string mac = json_object_get_string(json_member(r, "mac"));
        if (json_object_get_boolean(json_member(r, "exclude")))
            f.excluded.push_back(mac);
        else if (json_object* pin = json_member(r, "pin"))
            for (const auto& t : types)
                if (same_type(json_object_get_string(pin), t.second))
                    f.pinned.emplace_back(mac, t.first);
    }
    return f;
}

}  // namespace lynd

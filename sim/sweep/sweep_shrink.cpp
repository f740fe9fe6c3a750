#include "sim/sweep/sweep_shrink.h"

#include "sim/scenario/json_reader.h"

#include <string>
#include <vector>

#include "sim/sweep/sweep_generate.h"

namespace lynd {

namespace {

json_object* copy(json_object* o) {
    json_object* c = nullptr;
    return json_object_deep_copy(o, &c, nullptr) == 0 ? c : nullptr;
}

// The array with the items [from, to) left out.
json_object* without(json_object* array, size_t from, size_t to) {
    json_object* out = json_object_new_array();
    for (size_t i = 0; i < json_object_array_length(array); i++)
        if (i < from || i >= to)
            json_object_array_add(out, json_object_get(json_object_array_get_idx(array, i)));
    return out;
}

void take(json_object* doc, json_object* better);

// Tries doc with parent[key] replaced; keeps the change when it still
// breaks. Takes ownership of value.
bool try_member(json_object* doc, json_object* parent, const char* key, json_object* value,
                const SweepStillBreaks& still_breaks) {
    json_object* old = json_object_get(json_member(parent, key));
    json_object_object_add(parent, key, value);
    if (still_breaks(doc)) {
        json_object_put(old);
        return true;
    }
    json_object_object_add(parent, key, old);
    return false;
}

// Chunks of halving size left out of parent[key] while it still breaks.
void shrink_array(json_object* doc, json_object* parent, const char* key, const SweepStillBreaks& still_breaks) {
    json_object* a = json_member(parent, key);
    if (a == nullptr || !json_object_is_type(a, json_type_array))
        return;
    for (size_t chunk = json_object_array_length(a); chunk >= 1; chunk /= 2) {
        for (size_t from = 0; from < json_object_array_length(json_member(parent, key));) {
            json_object* cur = json_member(parent, key);
            if (!try_member(doc, parent, key, without(cur, from, from + chunk), still_breaks))
                from += chunk;
        }
    }
}

void shorten(json_object* doc, int64_t at_ms, const SweepStillBreaks& still_breaks) {
    int64_t period = json_object_get_int64(json_member(json_member(json_member(doc, "config"), "param"), "period"));
    int64_t end = at_ms / 1000 + 2 * (period > 0 ? period : 10);
    if (end >= json_object_get_int64(json_member(doc, "duration")))
        return;
    json_object* d = copy(doc);
    json_object_object_add(d, "duration", json_object_new_int64(end));
    sweep_clip(d);
    if (still_breaks(d))
        take(doc, d);
    else
        json_object_put(d);
}

bool names_port(json_object* item, const std::string& port) {
    const char* s = json_object_is_type(item, json_type_string) ? json_object_get_string(item)
                                                                 : json_object_get_string(json_member(item, "name"));
    std::string name = s != nullptr ? s : "";
    return name == port || name.compare(0, port.size() + 1, port + ".") == 0;
}

// Items of an array that name the port left out.
json_object* without_port(json_object* array, const std::string& port, const char* field) {
    json_object* out = json_object_new_array();
    for (size_t i = 0; array != nullptr && i < json_object_array_length(array); i++) {
        json_object* it = json_object_array_get_idx(array, i);
        json_object* named = field != nullptr ? json_member(it, field) : it;
        if (named == nullptr || !names_port(field != nullptr ? named : it, port))
            json_object_array_add(out, json_object_get(it));
    }
    return out;
}

// The document with one path and everything that names it left out.
json_object* without_path(json_object* doc, const std::string& path) {
    json_object* d = copy(doc);
    json_object_object_del(json_member(json_member(d, "config"), "interfaces"), path.c_str());
    json_object_object_del(json_member(d, "links"), path.c_str());
    json_object* node = json_member(d, "node");
    json_object_object_add(node, "interfaces", without_port(json_member(node, "interfaces"), path, nullptr));
    json_object* bridges = json_member(node, "bridges");
    for (size_t i = 0; bridges != nullptr && i < json_object_array_length(bridges); i++) {
        json_object* b = json_object_array_get_idx(bridges, i);
        json_object_object_add(b, "ports", without_port(json_member(b, "ports"), path, nullptr));
    }
    json_object_object_add(d, "timeline", without_port(json_member(d, "timeline"), path, "link"));
    return d;
}

std::vector<std::string> paths_of(json_object* doc) {
    std::vector<std::string> out;
    json_object_object_foreach(json_member(json_member(doc, "config"), "interfaces"), name, conf) {
        if (json_object_get_boolean(json_member(conf, "path")))
            out.push_back(name);
    }
    return out;
}

// Swaps doc's content for better's.
void take(json_object* doc, json_object* better) {
    std::vector<std::string> keys;
    json_object_object_foreach(doc, k, v) {
        (void)v;
        keys.push_back(k);
    }
    for (const auto& k : keys)
        json_object_object_del(doc, k.c_str());
    json_object_object_foreach(better, k2, v2) { json_object_object_add(doc, k2, json_object_get(v2)); }
    json_object_put(better);
}

void shrink_paths(json_object* doc, const SweepStillBreaks& still_breaks) {
    for (const auto& p : paths_of(doc)) {
        if (paths_of(doc).size() <= 1)
            return;
        json_object* d = without_path(doc, p);
        if (still_breaks(d))
            take(doc, d);
        else
            json_object_put(d);
    }
}

}  // namespace

json_object* sweep_shrink(json_object* original, int64_t at_ms, const SweepStillBreaks& still_breaks) {
    json_object* doc = copy(original);
    shorten(doc, at_ms, still_breaks);
    shrink_array(doc, doc, "timeline", still_breaks);
    shrink_array(doc, doc, "clients", still_breaks);
    shrink_array(doc, json_member(doc, "config"), "clients", still_breaks);
    shrink_array(doc, json_member(doc, "node"), "cpu", still_breaks);
    shrink_paths(doc, still_breaks);
    shrink_array(doc, doc, "timeline", still_breaks);
    return doc;
}

}  // namespace lynd

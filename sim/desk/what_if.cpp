#include "sim/desk/what_if.h"

#include <json-c/json.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <map>
#include <tuple>

#include "core/mac.h"
#include "sim/desk/replay_tape.h"

namespace lynd {

namespace {

constexpr size_t kMaxListed = 200;
// Far above a real day's; a flapping daemon on a hostile trace stops here.
constexpr size_t kMaxDecisions = 200000;

std::string mac_text(const std::string& bytes) {
    if (bytes.size() != LYND_MAC_LEN)
        return "";
    return lynd_mac(reinterpret_cast<const uint8_t*>(bytes.data())).s;
}

std::string member(json_object* o, const char* key) {
    json_object* v = nullptr;
    return json_object_object_get_ex(o, key, &v) ? json_object_get_string(v) : "";
}

bool ends_with(const std::string& s, const std::string& tail) {
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

bool read_decision(json_object* o, Decision* d) {
    std::string kind = member(o, "k"), fn = member(o, "fn");
    if (kind == "krel" && fn == "bridgeSetHCTableEntries") {
        std::string mac;
        d->what = "move";
        d->subject = trace_unhex(member(o, "mac").c_str(), member(o, "mac").size(), &mac) ? mac_text(mac) : "";
        d->value = member(o, "if");
        return true;
    }
    if (kind == "krel" && fn.compare(0, 20, "bridgeSetHcPreferred") == 0) {
        d->what = "preferred";
        d->subject = member(o, "br");
        d->value = member(o, "n");
        return true;
    }
    if (kind == "write" && ends_with(member(o, "path"), "hybr_broadcast_port")) {
        d->what = "broadcast";
        d->subject = member(o, "path");
        d->value = member(o, "data");
        while (!d->value.empty() && d->value.back() == '\n')
            d->value.pop_back();
        return true;
    }
    return false;
}

std::string seconds(int64_t ms) {
    char b[32];
    std::snprintf(b, sizeof b, "%" PRId64 ".%03d", ms / 1000, static_cast<int>(ms % 1000));
    return b;
}

struct Totals {
    std::map<std::string, size_t> count;                           // by kind
    std::map<std::string, std::map<std::string, int64_t>> on_path;  // client -> port -> ms
};

// Time on each port counts from a client's first move to the next one or the end.
Totals totals_of(const std::vector<Decision>& ds, int64_t end_ms) {
    Totals t;
    std::map<std::string, std::pair<std::string, int64_t>> where;
    for (const auto& d : ds) {
        t.count[d.what]++;
        if (d.what != "move")
            continue;
        auto it = where.find(d.subject);
        if (it != where.end())
            t.on_path[d.subject][it->second.first] += d.at_ms - it->second.second;
        where[d.subject] = {d.value, d.at_ms};
    }
    for (const auto& w : where)
        t.on_path[w.first][w.second.first] += end_ms - w.second.second;
    return t;
}

}  // namespace

bool Decision::operator<(const Decision& o) const {
    return std::tie(at_ms, what, subject, value) < std::tie(o.at_ms, o.what, o.subject, o.value);
}

bool Decision::operator==(const Decision& o) const {
    return at_ms == o.at_ms && what == o.what && subject == o.subject && value == o.value;
}

bool decision_of(int64_t at_ms, const std::string& record, Decision* out) {
    json_object* o = json_tokener_parse(record.c_str());
    bool ok = o != nullptr && read_decision(o, out);
    json_object_put(o);
    out->at_ms = at_ms;
    return ok;
}

bool DecisionLog::room() {
    if (outputs_.size() + states_.size() < kMaxDecisions)
        return true;
    dropped_++;
    return false;
}

// Only changes count: a broadcast port written again with the same port is one.
void DecisionLog::output(int64_t at_ms, const char* kind, const std::string& record) {
    Decision d;
    if ((std::strcmp(kind, "krel") != 0 && std::strcmp(kind, "write") != 0) || !decision_of(at_ms, record, &d))
        return;
    auto key = std::make_pair(d.what, d.subject);
    auto it = last_.find(key);
    if ((it != last_.end() && it->second == d.value) || !room())
        return;
    last_[key] = d.value;
    outputs_.push_back(d);
}

void DecisionLog::state(const Decision& d) {
    if (room())
        states_.push_back(d);
}

std::vector<Decision> DecisionLog::all() const {
    std::vector<Decision> ds = outputs_;
    ds.insert(ds.end(), states_.begin(), states_.end());
    return ds;
}

std::string what_if_report(const std::vector<Decision>& base, const std::vector<Decision>& other, int64_t end_ms) {
    std::vector<Decision> a = base, b = other, only_a, only_b;
    std::sort(a.begin(), a.end());
    std::sort(b.begin(), b.end());
    std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(only_a));
    std::set_difference(b.begin(), b.end(), a.begin(), a.end(), std::back_inserter(only_b));
    std::vector<std::pair<Decision, char>> diff;
    for (const auto& d : only_a)
        diff.emplace_back(d, '-');
    for (const auto& d : only_b)
        diff.emplace_back(d, '+');
    std::stable_sort(diff.begin(), diff.end(), [](const auto& x, const auto& y) { return x.first.at_ms < y.first.at_ms; });
    std::string out = "decisions that differ (- recorded only, + what-if only): " + std::to_string(diff.size()) + "\n";
    for (size_t i = 0; i < diff.size() && i < kMaxListed; i++) {
        const Decision& d = diff[i].first;
        out += "  " + std::string(1, diff[i].second) + " " + seconds(d.at_ms) + " s  " + d.what + " " + d.subject +
               " -> " + d.value + "\n";
    }
    if (diff.size() > kMaxListed)
        out += "  ... " + std::to_string(diff.size() - kMaxListed) + " more\n";
    Totals ta = totals_of(base, end_ms), tb = totals_of(other, end_ms);
    out += "totals (recorded / what-if):\n";
    for (const char* k : {"move", "path", "preferred", "broadcast"}) {
        static const std::map<std::string, std::string> names = {
            {"move", "client moves"}, {"path", "path state changes"}, {"preferred", "preferred port changes"},
            {"broadcast", "broadcast port changes"}};
        out += "  " + names.at(k) + ": " + std::to_string(ta.count[k]) + " / " + std::to_string(tb.count[k]) + "\n";
    }
    std::map<std::string, std::map<std::string, std::pair<int64_t, int64_t>>> time;
    for (const auto& c : ta.on_path)
        for (const auto& p : c.second)
            time[c.first][p.first].first = p.second;
    for (const auto& c : tb.on_path)
        for (const auto& p : c.second)
            time[c.first][p.first].second = p.second;
    if (!time.empty())
        out += "time on each path from the client's first move, s (recorded / what-if):\n";
    for (const auto& c : time) {
        out += "  " + c.first + ":";
        for (const auto& p : c.second)
            out += " " + p.first + " " + seconds(p.second.first) + " / " + seconds(p.second.second) + ";";
        out += "\n";
    }
    return out;
}

}  // namespace lynd

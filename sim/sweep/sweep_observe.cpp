#include "sim/sweep/sweep_observe.h"

#include <json-c/json.h>

#include "core/mac.h"
#include "sim/sweep/sweep_invariants.h"

namespace lynd {

namespace {

std::string str_of(json_object* o, const char* key) {
    json_object* v = nullptr;
    return json_object_object_get_ex(o, key, &v) && json_object_is_type(v, json_type_string) ? json_object_get_string(v)
                                                                                             : "";
}

int64_t int_of(json_object* o, const char* key) {
    json_object* v = nullptr;
    return json_object_object_get_ex(o, key, &v) ? json_object_get_int64(v) : 0;
}

json_object* array_of(json_object* o, const char* key) {
    json_object* v = nullptr;
    return json_object_object_get_ex(o, key, &v) && json_object_is_type(v, json_type_array) ? v : nullptr;
}

// "bridgeSetHCTableEntries BRIDGE MAC ID SOURCE DESTINATION"
bool parse_write(const std::string& call, SweepEntry* e) {
    const std::string prefix = "bridgeSetHCTableEntries ";
    if (call.compare(0, prefix.size(), prefix) != 0)
        return false;
    std::vector<std::string> words;
    size_t pos = prefix.size();
    while (pos <= call.size()) {
        size_t sp = call.find(' ', pos);
        words.push_back(call.substr(pos, sp == std::string::npos ? std::string::npos : sp - pos));
        if (sp == std::string::npos)
            break;
        pos = sp + 1;
    }
    if (words.size() < 5)
        return false;
    e->mac = words[1];
    e->port = words[4];
    return true;
}

bool is_flush(const std::string& call) {
    return call.compare(0, 26, "bridgeSetHcPreferredAndFlu") == 0 || call.compare(0, 18, "bridgeFlushHCTable") == 0;
}

}  // namespace

void SweepObserver::before_run(size_t allocations) {
    flushed_between_ = false;
    between_ = writes_since(calls_seen_, &flushed_between_);
    calls_at_start_ = node_->bridge().calls().size();
    allocations_at_start_ = allocations;
}

std::vector<SweepEntry> SweepObserver::writes_since(size_t from, bool* flushed) const {
    std::vector<SweepEntry> out;
    const auto& calls = node_->bridge().calls();
    for (size_t i = from; i < calls.size(); i++) {
        SweepEntry e;
        if (parse_write(calls[i], &e))
            out.push_back(e);
        *flushed = *flushed || is_flush(calls[i]);
    }
    return out;
}

PeriodView SweepObserver::after_run(size_t allocations) {
    PeriodView v;
    v.allocations = allocations - allocations_at_start_;
    v.at_ms = node_->loop().now_ms();
    v.writes = writes_since(calls_at_start_, &v.flushed);
    v.flushed = v.flushed || flushed_between_;
    v.writes_between = std::move(between_);
    between_.clear();
    read_bridge(&v);
    v.answered = read_answers(&v);
    // Decisions made while the bus was away are read with the next answer;
    // the writes since the last answer stay with them.
    if (v.answered)
        calls_seen_ = node_->bridge().calls().size();
    return v;
}

bool SweepObserver::ask(const char* method, std::string* reply) {
    return node_->bus().call("lynd", method, "{}", reply) == 0;
}

// The first bridge's preferred port; the entries of every bridge (the
// client records are one set for all path-selection bridges).
void SweepObserver::read_bridge(PeriodView* v) {
    const SimBridgeState* first = node_->bridge().first();
    char name[IFNAME_LEN] = {};
    if (first != nullptr && first->preferred != 0 && node_->host().if_indextoname(first->preferred, name))
        v->preferred = name;
    for (const auto& bridge : bridges_)
        if (const SimBridgeState* b = node_->bridge().find(bridge))
            read_entries(*b, v);
}

void SweepObserver::read_entries(const SimBridgeState& b, PeriodView* v) {
    for (const auto& e : b.hc) {
        char port[IFNAME_LEN] = {};
        (void)node_->host().if_indextoname(e.dst_port, port);
        v->hc.push_back(SweepEntry{lynd_mac(e.mac).s, port});
    }
}

bool SweepObserver::read_answers(PeriodView* v) {
    std::string status, paths, clients, decisions, counters;
    if (!ask("status", &status) || !ask("paths", &paths) || !ask("clients", &clients) ||
        !ask("decisions", &decisions) || !ask("counters", &counters))
        return false;
    json_object* doc = json_tokener_parse(status.c_str());
    v->pool_used = static_cast<int>(int_of(doc, "client_pool_used"));
    v->pool_size = static_cast<int>(int_of(doc, "client_pool_size"));
    json_object_put(doc);
    doc = json_tokener_parse(paths.c_str());
    json_object* list = array_of(doc, "paths");
    for (size_t i = 0; list != nullptr && i < json_object_array_length(list); i++) {
        json_object* p = json_object_array_get_idx(list, i);
        v->paths.push_back(SweepPathView{sweep_base_port(str_of(p, "name")), str_of(p, "state")});
    }
    json_object_put(doc);
    doc = json_tokener_parse(clients.c_str());
    list = array_of(doc, "clients");
    for (size_t i = 0; list != nullptr && i < json_object_array_length(list); i++) {
        json_object* c = json_object_array_get_idx(list, i);
        v->clients.push_back(SweepClientView{str_of(c, "mac"), sweep_base_port(str_of(c, "path"))});
    }
    json_object_put(doc);
    doc = json_tokener_parse(counters.c_str());
    uint64_t moves = static_cast<uint64_t>(int_of(doc, "moves"));
    json_object_put(doc);
    v->moves = moves - last_moves_;
    last_moves_ = moves;
    read_decisions(decisions, v);
    return true;
}

void SweepObserver::read_decisions(const std::string& reply, PeriodView* v) {
    json_object* doc = json_tokener_parse(reply.c_str());
    json_object* list = array_of(doc, "decisions");
    uint64_t first_new = 0;
    uint64_t before = last_seq_;
    for (size_t i = 0; list != nullptr && i < json_object_array_length(list); i++) {
        json_object* d = json_object_array_get_idx(list, i);
        uint64_t seq = static_cast<uint64_t>(int_of(d, "seq"));
        if (seq <= last_seq_)
            continue;
        if (first_new == 0)
            first_new = seq;
        v->decisions.push_back(SweepDecision{int_of(d, "uptime"), str_of(d, "kind"), str_of(d, "subject"),
                                             str_of(d, "from"), str_of(d, "to"), str_of(d, "reason")});
        last_seq_ = seq;
    }
    v->decisions_lost = first_new > before + 1;
    json_object_put(doc);
}

}  // namespace lynd

#include "sim/desk/trace_anonymize.h"

#include <json-c/json.h>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <map>
#include <vector>

#include "core/mac.h"
#include "bridge/table_entries.h"
#include "sim/desk/trace_reader.h"
#include "trace/trace_hex.h"
#include "trace/trace_line.h"
#include "trace/trace_order.h"
#include "wlan/qca/qca_layouts.h"

namespace lynd {

namespace {

using Mac = std::string;  // 6 bytes

bool hex_field(const std::string& kind, const char* key) {
    size_t n = std::strlen(key);
    if (n > 2 && std::strcmp(key + n - 2, "_x") == 0)
        return true;
    for (const char* k : {"mac", "id", "addr", "frame", "dst", "cmd"})
        if (std::strcmp(k, key) == 0)
            return true;
    return std::strcmp(key, "data") == 0 &&
           (kind == "nl_recv" || kind == "k_table" || kind == "k_nlmsg" || kind == "ioctl");
}

bool is_word(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

bool worth_hiding(const Mac& m) {
    bool zero = m.find_first_not_of('\0') == std::string::npos;
    return m.size() == 6 && !zero && (m[0] & 1) == 0;
}

class Anonymizer {
public:
    void learn_text(const std::string& s);
    void learn_bytes(const TraceRecord& r, const char* key, const std::string& b);
    void learn_ssid(const std::string& s) {
        if (!s.empty() && ssids_.count(s) == 0)
            ssids_[s] = "ssid-" + std::to_string(ssids_.size() + 1);
    }
    std::string text(const std::string& s) const;
    std::string bytes(const std::string& b) const;

private:
    void learn(const Mac& m);
    void learn_laid_out(const ByteLayout& layout, const std::string& b);
    std::map<Mac, Mac> macs_;
    std::map<std::string, std::string> suffixes_;
    std::map<std::string, std::string> ssids_;
};

void Anonymizer::learn(const Mac& m) {
    if (!worth_hiding(m) || macs_.count(m) != 0)
        return;
    std::string tail = m.substr(1);
    auto it = suffixes_.find(tail);
    if (it == suffixes_.end()) {
        size_t n = suffixes_.size() + 1;
        std::string stand_in = {'\0', '\0', static_cast<char>(n >> 16), static_cast<char>(n >> 8),
                                static_cast<char>(n)};
        it = suffixes_.emplace(tail, stand_in).first;
    }
    macs_[m] = m.substr(0, 1) + it->second;
}

// "aa:bb:cc:dd:ee:ff" (or with '-') at p; the six bytes.
bool mac_at(const std::string& s, size_t p, Mac* m) {
    if (p + 17 > s.size())
        return false;
    char sep = s[p + 2];
    if (sep != ':' && sep != '-')
        return false;
    m->clear();
    for (size_t i = 0; i < 6; i++) {
        const char* h = s.data() + p + i * 3;
        if (!std::isxdigit(static_cast<unsigned char>(h[0])) || !std::isxdigit(static_cast<unsigned char>(h[1])) ||
            (i < 5 && h[2] != sep))
            return false;
        std::string out;
        if (!trace_unhex(h, 2, &out))
            return false;
        *m += out;
    }
    return p + 17 == s.size() || !std::isxdigit(static_cast<unsigned char>(s[p + 17]));
}

void Anonymizer::learn_text(const std::string& s) {
    Mac m;
    for (size_t p = 0; p + 17 <= s.size(); p++)
        if ((p == 0 || !std::isxdigit(static_cast<unsigned char>(s[p - 1]))) && mac_at(s, p, &m))
            learn(m);
}

// The addresses in a driver request's bytes, where its back-end's layout
// puts them: in the block, or in each record as the daemon steps through.
void Anonymizer::learn_laid_out(const ByteLayout& layout, const std::string& b) {
    const auto* p = reinterpret_cast<const uint8_t*>(b.data());
    for (size_t off = 0; off + layout.record_min <= b.size();) {
        for (size_t i = 0; i < layout.mac_count; i++)
            if (off + layout.macs[i] + 6 <= b.size())
                learn(b.substr(off + layout.macs[i], 6));
        size_t len = layout.record_min == 0 ? 0 : trace_load_le16(p + off + layout.length_at);
        if (len == 0)
            break;
        off += len;
    }
}

void Anonymizer::learn_bytes(const TraceRecord& r, const char* key, const std::string& b) {
    const std::string& kind = r.kind;
    int64_t table_type = r.num("type");
    if (std::strcmp(key, "mac") == 0 || std::strcmp(key, "id") == 0 || std::strcmp(key, "addr") == 0)
        learn(b.substr(0, 6));
    if (kind == "k_table") {
        size_t size = table_type == LYND_TABLE_HC ? HC_ENTRY_SIZE : FDB_ENTRY_SIZE;
        for (size_t off = 0; off + size <= b.size(); off += size) {
            learn(b.substr(off, 6));
            if (table_type == LYND_TABLE_HC)
                learn(b.substr(off + 6, 6));
        }
    }
    const DriverRequest* d =
        kind == "ioctl" ? find_driver_request(&qca_driver_requests, static_cast<unsigned long>(r.num("req"))) : nullptr;
    bool payload = std::strcmp(key, "data") == 0 || std::strcmp(key, "cmd") == 0;
    if (d != nullptr && d->layout != nullptr && payload)
        learn_laid_out(*d->layout, b);
}

std::string Anonymizer::text(const std::string& s) const {
    std::string out = s;
    Mac m;
    for (size_t p = 0; p + 17 <= out.size(); p++) {
        if ((p > 0 && std::isxdigit(static_cast<unsigned char>(out[p - 1]))) || !mac_at(out, p, &m))
            continue;
        auto it = macs_.find(m);
        if (it == macs_.end())
            continue;
        bool upper = std::isupper(static_cast<unsigned char>(out[p])) || std::isupper(static_cast<unsigned char>(out[p + 1]));
        char sep = out[p + 2];
        const auto* b = reinterpret_cast<const uint8_t*>(it->second.data());
        out.replace(p, 17, lynd_mac(b, sep, upper).s);
        p += 16;
    }
    for (const auto& kv : ssids_) {
        for (size_t p = out.find(kv.first); p != std::string::npos; p = out.find(kv.first, p + 1)) {
            // Only the name standing alone: an SSID "home" leaves "home_name" be.
            size_t end = p + kv.first.size();
            if ((p > 0 && is_word(out[p - 1])) || (end < out.size() && is_word(out[end])))
                continue;
            out.replace(p, kv.first.size(), kv.second);
        }
    }
    return out;
}

std::string Anonymizer::bytes(const std::string& b) const {
    std::string out = b;
    for (const auto& kv : macs_)
        for (size_t p = out.find(kv.first); p != std::string::npos; p = out.find(kv.first, p + 6))
            out.replace(p, 6, kv.second);
    return out;
}

struct Walk {
    std::string kind;
    int64_t table_type = 0;
};

json_object* rewrite(json_object* v, const Anonymizer& a);

// Strings anywhere inside v (messages, replies, argument lists).
json_object* rewrite(json_object* v, const Anonymizer& a) {
    if (json_object_is_type(v, json_type_string))
        return json_object_new_string(a.text(json_object_get_string(v)).c_str());
    if (json_object_is_type(v, json_type_array)) {
        json_object* out = json_object_new_array();
        for (size_t i = 0; i < json_object_array_length(v); i++)
            json_object_array_add(out, rewrite(json_object_array_get_idx(v, i), a));
        return out;
    }
    if (json_object_is_type(v, json_type_object)) {
        json_object* out = json_object_new_object();
        json_object_object_foreach(v, key, val) { json_object_object_add(out, key, rewrite(val, a)); }
        return out;
    }
    return json_object_get(v);
}

std::string hex_of(const std::string& b) {
    static char buf[TRACE_LINE_MAX];
    size_t n = trace_hex(buf, sizeof buf, b.data(), b.size());
    return n <= sizeof buf ? std::string(buf, n) : std::string();
}

void learn_record(const TraceRecord& r, Anonymizer* a) {
    json_object* in = r.object();
    if (in == nullptr)
        return;
    json_object_object_foreach(in, key, val) {
        if (!json_object_is_type(val, json_type_string)) {
            a->learn_text(json_object_to_json_string(val));
            continue;
        }
        std::string s = json_object_get_string(val), b;
        if (hex_field(r.kind, key) && trace_unhex(s.data(), s.size(), &b, TRACE_FIELD_MAX))
            a->learn_bytes(r, key, b);
        else
            a->learn_text(s);
    }
    std::string path = r.str("path");
    if (r.kind == "uci" && path.size() > 5 && path.compare(path.size() - 5, 5, ".ssid") == 0)
        a->learn_ssid(r.text("value"));
}

std::string rewrite_record(const TraceRecord& r, const Anonymizer& a) {
    json_object* in = r.object();
    if (in == nullptr)
        return "";  // read whole before: never so; and never a line with its addresses
    json_object* out = json_object_new_object();
    json_object_object_foreach(in, key, val) {
        std::string s = json_object_is_type(val, json_type_string) ? json_object_get_string(val) : "", b;
        if (json_object_is_type(val, json_type_string) && hex_field(r.kind, key) && trace_unhex(s.data(), s.size(), &b))
            json_object_object_add(out, key, json_object_new_string(hex_of(a.bytes(b)).c_str()));
        else
            json_object_object_add(out, key, rewrite(val, a));
    }
    std::string line = json_object_to_json_string_ext(out, JSON_C_TO_STRING_PLAIN | JSON_C_TO_STRING_NOSLASHESCAPE);
    json_object_put(out);
    return line + "\n";
}

}  // namespace

bool trace_anonymize(const TraceSource& source, const std::function<bool(const std::string&)>& write,
                     std::string* error) {
    Anonymizer a;
    TraceStream learn(source, true);
    if (!learn.open()) {
        *error = learn.error();
        return false;
    }
    learn_record(learn.header_record(), &a);
    TraceRecord r;
    while (learn.next(&r))
        learn_record(r, &a);
    *error = learn.error();
    if (!error->empty())
        return false;
    TraceStream again(source, false);
    if (!again.open()) {
        *error = again.error();
        return false;
    }
    bool ok = write(rewrite_record(again.header_record(), a));
    while (ok && again.next(&r))
        ok = write(rewrite_record(r, a));
    *error = !again.error().empty() ? again.error() : ok ? "" : "cannot write the anonymized trace";
    return error->empty();
}

bool trace_anonymize(const std::string& in, std::string* out, std::string* error) {
    out->clear();
    return trace_anonymize(trace_text(in), [out](const std::string& line) {
        *out += line;
        return true;
    }, error);
}

}  // namespace lynd

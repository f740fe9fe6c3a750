#include "sim/scenario/message_fields.h"

#include <cctype>
#include <cstdio>
#include <cstring>

#include "core/mac.h"
#include "event/netlink_datagram.h"
#include "sim/node/netlink_craft.h"

namespace lynd {

namespace {

int hex_digit(char c) {
    return std::isxdigit(static_cast<unsigned char>(c)) ? lynd_hex_digit(c) : -1;
}

bool from_hex(const char* hex, size_t n, std::string* out) {
    out->clear();
    if (n % 2 != 0 || n / 2 > kMaxCrafted)
        return false;
    for (size_t i = 0; i < n; i += 2) {
        int hi = hex_digit(hex[i]), lo = hex_digit(hex[i + 1]);
        if (hi < 0 || lo < 0)
            return false;
        out->push_back(static_cast<char>(hi * 16 + lo));
    }
    return true;
}

std::string quoted(const char* s) { return std::string("\"") + s + "\""; }

}  // namespace

std::string mac_words(const uint8_t* mac) {
    char text[LYND_MAC_TEXT_LEN];
    lynd_mac_text(mac, text);
    return text;
}

std::string hex_words(uint32_t v) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(v));
    return text;
}

bool hex_member(JsonReader& r, json_object* o, const char* key, std::string* out) {
    json_object* v = json_member(o, key);
    if (v == nullptr)
        return false;
    if (!json_is(v, json_type_string) ||
        !from_hex(json_object_get_string(v), static_cast<size_t>(json_object_get_string_len(v)), out))
        return r.fail(quoted(key) + " must be an even number of hex digits, at most " +
                      std::to_string(kMaxCrafted) + " bytes");
    return true;
}

bool type_member(JsonReader& r, json_object* o, const char* key, const TypeName* names, uint16_t* out) {
    json_object* v = json_member(o, key);
    if (v == nullptr)
        return false;
    if (json_is(v, json_type_int) && json_object_get_int64(v) >= 0 && json_object_get_int64(v) <= 0xffff) {
        *out = static_cast<uint16_t>(json_object_get_int64(v));
        return true;
    }
    std::string known;
    for (const TypeName* t = names; t->name != nullptr; t++) {
        if (json_is(v, json_type_string) && std::strcmp(json_object_get_string(v), t->name) == 0) {
            *out = t->type;
            return true;
        }
        known += std::string(known.empty() ? "" : ", ") + t->name;
    }
    return r.fail(quoted(key) + " must be a number from 0 to 65535 or one of " + known);
}

const char* words_of(const TypeName* names, uint16_t type) {
    for (const TypeName* t = names; t->name != nullptr; t++)
        if (t->type == type)
            return t->words;
    return nullptr;
}

bool mac_member(JsonReader& r, json_object* o, const char* key, const std::string& what, uint8_t* mac) {
    std::string text;
    if (!json_get_string(r, o, key, &text, 17))
        return false;
    return parse_mac(text, mac) || r.fail(quoted(key) + " of " + what + " must be a MAC (xx:xx:xx:xx:xx:xx)");
}

bool port_member(JsonReader& r, json_object* o, const char* key, const Scenario& sc, int64_t max,
                 const std::string& what, uint32_t* index, std::string* name) {
    json_object* v = json_member(o, key);
    if (v == nullptr)
        return r.fail(what + " needs " + quoted(key));
    if (json_is(v, json_type_string)) {
        for (const SimInterface& i : sc.interfaces)
            if (i.name == json_object_get_string(v)) {
                *index = i.ifindex;
                *name = i.name;
                return true;
            }
        return r.fail(quoted(key) + " of " + what + " names an interface the node does not have: " +
                      json_object_get_string(v));
    }
    int64_t n = json_object_get_int64(v);
    if (!json_is(v, json_type_int) || n < 0 || n > max)
        return r.fail(quoted(key) + " of " + what + " is an interface name of the node or an index from 0 to " +
                      std::to_string(max));
    *index = static_cast<uint32_t>(n);
    *name = std::to_string(n);
    for (const SimInterface& i : sc.interfaces)
        if (i.ifindex == *index)
            *name = i.name;
    return true;
}

void entries(JsonReader& r, json_object* v, const char* key, const Scenario& sc, EntryFields fields, Crafted* out) {
    bool list = json_is(v, json_type_array);
    size_t n = list ? json_object_array_length(v) : 1;
    if (list && (n == 0 || n > kJsonMaxItems)) {
        r.fail(quoted(key) + " lists 1 to " + std::to_string(kJsonMaxItems) + " entries");
        return;
    }
    for (size_t i = 0; r.ok && i < n; i++) {
        json_object* o = list ? json_object_array_get_idx(v, i) : v;
        std::string what = quoted(key) + (list ? " " + std::to_string(i) : "");
        if (!json_is(o, json_type_object))
            r.fail(what + " must be an object of fields");
        else
            fields(r, o, sc, what, out);
        if (out->body.size() > kMaxCrafted - NLMSG_HEADER_LEN)
            r.fail("the message grows past " + std::to_string(kMaxCrafted) + " bytes");
    }
    if (out->entries > 1)
        out->label += " +" + std::to_string(out->entries - 1);
}

void lying_len(JsonReader& r, json_object* o, TimelineEntry* e) {
    int64_t len = 0;
    if (!json_get_int(r, o, "len", 0, UINT32_MAX, &len))
        return;
    set_nlmsg_len(&e->data, static_cast<uint32_t>(len));
    if (!e->label.empty()) {
        e->label += " len " + std::to_string(len);
        e->detail += " len " + std::to_string(len);
    }
}

}  // namespace lynd

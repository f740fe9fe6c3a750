// Checked reads of a crafted message's fields for the scenario parser:
// ports named by the node's interfaces, types by name, entries one by one
// or in a list, each recorded in words for the picture.
#pragma once
#include <json-c/json.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "event/netlink_datagram.h"
#include "sim/scenario/json_reader.h"
#include "sim/scenario/scenario.h"

namespace lynd {

constexpr size_t kMaxCrafted = NL_RECV_BUF_SIZE;  // what one receive takes

// A message type's number, its name in a scenario and in words.
struct TypeName {
    uint16_t type;
    const char* name;
    const char* words;
};

// What a message is made of: its body, and its fields in words.
struct Crafted {
    std::string body;
    std::string label;   // the first entry, short
    std::string detail;  // every field of every entry
    size_t entries = 0;
};

// Reads one entry's fields; what names it in a problem.
using EntryFields = void (*)(JsonReader& r, json_object* o, const Scenario& sc, const std::string& what, Crafted* out);

std::string mac_words(const uint8_t* mac);
std::string hex_words(uint32_t v);

// False when key is absent or fails its check (which is recorded).
bool hex_member(JsonReader& r, json_object* o, const char* key, std::string* out);
// A number, or one of the names of types (a list ended by a null name).
bool type_member(JsonReader& r, json_object* o, const char* key, const TypeName* names, uint16_t* out);
bool mac_member(JsonReader& r, json_object* o, const char* key, const std::string& what, uint8_t* mac);
// An interface of the node by its name, or any index up to max (recorded
// when absent); *name is what the picture calls it.
bool port_member(JsonReader& r, json_object* o, const char* key, const Scenario& sc, int64_t max,
                 const std::string& what, uint32_t* index, std::string* name);

// The words of type, or null when it has no name.
const char* words_of(const TypeName* names, uint16_t type);

// The entry under key, one object or a list of them laid back to back.
void entries(JsonReader& r, json_object* v, const char* key, const Scenario& sc, EntryFields fields, Crafted* out);

// "len" rewrites the length field of a well-formed or hex message.
void lying_len(JsonReader& r, json_object* o, TimelineEntry* e);

}  // namespace lynd

// Every key the configuration file may hold, in one table: a key missing
// from it is reported as unknown, a key in it is checked for its type and
// range, takes its default when left out and is stored by its row. A new
// key is one more row.
#pragma once
#include <cstdint>

#include <json-c/json.h>

#include "config/config_report.h"
#include "config/lynd_config.h"

enum class config_section : uint8_t { TOP, BRIDGE, INTERFACE, PARAM };

enum class config_kind : uint8_t {
    ANY,     // checked by its owner
    BOOL,    // true or false (0 and 1 pass too)
    INT,     // a whole number
    STRING,  // text
    OBJECT,  // a section
};

// How a whole number becomes the stored value.
enum class config_range : uint8_t {
    AS_IS,       // any 32-bit value
    CLAMP,       // lo..hi, values outside become the nearer bound
    LOW8,        // modulo 256, no clamp
    LOW8_CLAMP,  // modulo 256, then clamped to lo..hi
    CLAMP_LOW8,  // clamped to lo..hi, then modulo 256
    SECONDS,     // times 1000 in 32 bits
    UNSIGNED,    // a 32-bit unsigned number
};

// The records a section's values go to; a loader fills the one it loads.
struct config_target {
    lynd_config* top;
    conf_bridge* bridge;
    conf_interface* iface;
    conf_param* param;
};

// Stores the value of a key (of one band for a per-band key) after its
// range rule.
using config_store = void (*)(const config_target& t, int band, int64_t value);

struct config_key {
    config_section section;
    const char* name;
    config_kind kind;
    bool per_band;  // stands for name_2g, name_5g and name_6g
    config_range range;
    int32_t lo;
    int32_t hi;
    int32_t def[BAND_COUNT];  // when the key is left out; by band for a per-band key
    config_store store;       // null: loaded by its owner, which says why
};

// The rows of the table, in order.
const config_key* config_keys_begin();
const config_key* config_keys_end();

// The row of key in section, or null when the key is unknown.
const config_key* config_key_find(config_section section, const char* key);

// The value the loader stores for raw under key's range rule.
int64_t config_key_effective(const config_key& key, int32_t raw);

// Stores every table-loaded key of section from obj, or its default when
// obj leaves it out (obj may be null or not an object: all defaults).
void config_load_section(config_section section, json_object* obj, const config_target& t);

// Reports every unknown, mistyped or out-of-range member of obj, a section
// of the file found at where ("" for the top level).
void config_check_members(config_report* r, config_section section, json_object* obj, const char* where);

// Loading, dumping and looking up the configuration.
#pragma once
#include <cstddef>
#include <cstdint>

#include "config/lynd_config.h"

constexpr const char* LYND_DEFAULT_CONFIG = "/etc/lynd.json";
constexpr size_t LYND_CONFIG_MAX_SIZE = 256 * 1024;

enum class config_parse_result {
    OK,
    BAD_JSON,            // not a JSON document
    BAD_INTERFACE_TYPE,  // an interface without one of the five types
};

// Pure: fills conf from the text of a configuration file. On BAD_INTERFACE_TYPE
// the interfaces stored before the bad one stay in conf.
config_parse_result config_parse(lynd_config* conf, const char* text, size_t len);

// Reads and parses filename; a bad file is fatal (exit 1).
void config_load(lynd_config* conf, const char* filename);
void config_dump(const lynd_config* conf);
void config_free(lynd_config* conf);

conf_interface* config_find_interface_by_name(lynd_config* conf, const char* name);
conf_interface* config_find_interface_by_index(lynd_config* conf, uint32_t ifindex);
bool config_index_to_name(uint32_t ifindex, char* name);
bool config_get_util_compensation();

// Loading, dumping and looking up the configuration.
#pragma once
#include <cstddef>
#include <cstdint>

#include "config/config_report.h"
#include "config/lynd_config.h"

constexpr const char* LYND_DEFAULT_CONFIG = "/etc/lynd.json";
// Files of this size or more are refused.
constexpr size_t LYND_CONFIG_MAX_SIZE = 256 * 1024;

enum class config_parse_result {
    OK,
    BAD_JSON,            // not a JSON document
    BAD_INTERFACE_TYPE,  // an interface without one of the five types
};

// Pure: fills conf from the text of a configuration file. On BAD_INTERFACE_TYPE
// the interfaces stored before the bad one stay in conf. Every problem goes
// to report (null: the daemon's log); a refused file leaves its reason there.
config_parse_result config_parse(lynd_config* conf, const char* text, size_t len, config_report* report = nullptr);

// Reads and parses filename as the daemon does; a file that cannot be read
// or is too large counts as BAD_JSON.
config_parse_result config_read(lynd_config* conf, const char* filename, config_report* report);
// Reads and parses filename; false after the FATAL lines of a bad file. The
// text of a file that loads is kept as the running configuration's.
bool config_load(lynd_config* conf, const char* filename);
// The same for a run that follows another in the process: when the file no
// longer loads, the running configuration's text is loaded again, and a
// line says so (fatal only when there is none).
bool config_load_keeping(lynd_config* conf, const char* filename);
// The text the daemon runs with ("" before a load), as it was read.
const char* config_running_text(size_t* len);
// Sets it (null: none), as for a fresh start or the replay of a restart.
// False when it could not be kept (no memory).
bool config_set_running_text(const char* text, size_t len);
void config_dump(const lynd_config* conf);
void config_free(lynd_config* conf);

// "ethernet", "2.4g", "5g", "5g_2", "6g"; "unknown" for anything else.
const char* config_if_type_name(uint32_t type);

conf_interface* config_find_interface_by_name(lynd_config* conf, const char* name);
conf_interface* config_find_interface_by_index(lynd_config* conf, uint32_t ifindex);
bool config_index_to_name(uint32_t ifindex, char* name);
bool config_get_util_compensation();

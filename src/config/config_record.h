// The opt-in trace: "record" names the file (a name in the daemon's trace
// directory, never a path), "record_size" the bytes of each of its two
// rotating halves.
#pragma once
#include <json-c/json.h>

#include "config/lynd_config.h"

struct config_report;

// Below this a header and a few records would not fit in one half.
constexpr int32_t LYND_RECORD_SIZE_MIN = 16 * 1024;
// Two files of this fill no router's /tmp.
constexpr int32_t LYND_RECORD_SIZE_MAX = 8 * 1024 * 1024;

void config_load_record(lynd_config* conf, json_object* root, config_report* report);

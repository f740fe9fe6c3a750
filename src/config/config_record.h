// The opt-in trace: "record" names the file, "record_size" the bytes of each
// of its two rotating halves.
#pragma once
#include <json-c/json.h>

#include "config/lynd_config.h"

void config_load_record(lynd_config* conf, json_object* root);

#pragma once
#include <json-c/json.h>

#include "config/lynd_config.h"

// Fills conf->param from the "param" object; only called when it exists.
void config_load_param(lynd_config* conf, json_object* param);

// Back to the state before any load (switch off).
void config_reset_util_compensation();

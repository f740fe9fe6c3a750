// Reading the steering limits: param's "flap_guard" and the top-level
// "clients" list. Bad members are reported with a WARN naming them.
#pragma once
#include <json-c/json.h>

#include "config/lynd_config.h"

void config_load_flap_guard(conf_flap_guard* out, json_object* param);
void config_load_clients(conf_client_rules* out, json_object* root);
// The path type named by a pin ("2.4g", "5g", ...), IF_TYPE_MAX for none.
uint8_t config_pin_type(const char* name);

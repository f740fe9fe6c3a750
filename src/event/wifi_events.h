// Station departures reported by the Wi-Fi driver over rtnetlink; handled
// here, never delivered to the modules.
#pragma once
#include <cstddef>
#include <cstdint>

#include "core/event_records.h"

constexpr uint32_t RTMGRP_LINK_GROUP = 1;

bool event_wifi_init(event_hub* ev);
// A run that ends the process leaves the socket to the exit; a run that
// restarts closes it, as the next run opens its own.
void event_wifi_free(event_hub* ev);
void event_wifi_nl_cb(lynd::LoopFd* f, unsigned events);
// msg is one complete RTM_NEWLINK message of len bytes.
void nl_wifi_newlink_handle(lynd_config* conf, const uint8_t* msg, size_t len);
void event_wifi_flush_fdb(lynd_config* conf, const char* ifname);

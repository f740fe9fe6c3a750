// How a module plugs into the daemon.
#pragma once
#include <cstddef>
#include <cstdint>

#include "core/list.h"
#include "core/event_records.h"

struct lynd_config;

struct lynd_module {
    lynd_list list;  // first: the list link is the record
    const char* name;
    uint32_t id;
    void (*finit)(lynd_module* module);
    event_listener listener;
};

enum : uint32_t { LYND_MODULE_LOOP_AVOIDANCE = 0, LYND_MODULE_PATH_SELECTION = 1 };

// Returns a heap record with its listener already registered, or null.
using lynd_module_init_fn = lynd_module* (*)(lynd_config* conf);

struct lynd_module_table {
    const lynd_module_init_fn* inits;
    size_t count;
};

extern const lynd_module_table lynd_module_inits;

inline lynd_module* lynd_module_of(lynd_list* link) {
    return static_cast<lynd_module*>(lynd_container_of(link, offsetof(lynd_module, list)));
}

inline lynd_module* lynd_module_of_listener(event_listener* l) {
    return static_cast<lynd_module*>(lynd_container_of(l, offsetof(lynd_module, listener)));
}

lynd_module* lynd_get_mod_contex(lynd_list* modules, uint32_t id);

#include "modules/module.h"

// Modules start in table order; each puts itself at the head of the lists.
const lynd_module_table lynd_module_inits = {nullptr, 0};

lynd_module* lynd_get_mod_contex(lynd_list* modules, uint32_t id) {
    for (lynd_list* p = modules->next; p != modules; p = p->next) {
        lynd_module* m = lynd_module_of(p);
        if (m->id == id)
            return m;
    }
    return nullptr;
}

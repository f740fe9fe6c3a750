#include "modules/module.h"

#include "modules/loop_avoidance/loop_avoidance.h"
#include "modules/path_selection/path_selection.h"

namespace {

const lynd_module_init_fn kInits[] = {loop_avoidance_init, path_selection_init};

}  // namespace

// Modules start in table order; each puts itself at the head of the lists.
const lynd_module_table lynd_module_inits = {kInits, sizeof kInits / sizeof kInits[0]};

lynd_module* lynd_get_mod_contex(lynd_list* modules, uint32_t id) {
    for (lynd_list* p = modules->next; p != modules; p = p->next) {
        lynd_module* m = lynd_module_of(p);
        if (m->id == id)
            return m;
    }
    return nullptr;
}

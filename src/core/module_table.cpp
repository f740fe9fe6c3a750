#include "core/module.h"

// Modules start in table order; each puts itself at the head of the lists.
const lynd_module_table lynd_module_inits = {nullptr, 0};

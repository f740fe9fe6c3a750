#include "core/uci_query.h"

#include <cstring>

#include "core/log.h"
#include "platform/seams.h"

bool lynd_uci_get_value(const char* path, char* value, size_t size) {
    if (path == nullptr || value == nullptr || size == 0) {
        LYND_ERR("invalid input ...");
        return false;
    }
    // The lookup parses the path in place, so it works on a copy.
    char work[LYND_UCI_PATH_MAX + 1] = {};
    std::strncpy(work, path, LYND_UCI_PATH_MAX);
    switch (lynd::uci().get(work, value, size)) {
    case lynd::UciResult::FOUND:
        return true;
    case lynd::UciResult::CONTEXT_FAILED:
        LYND_ERR("uci_alloc_context failed...");
        return false;
    case lynd::UciResult::NOT_FOUND:
    case lynd::UciResult::LOOKUP_FAILED:
        break;
    }
    return false;
}

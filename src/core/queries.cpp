#include "core/queries.h"

#include <cstring>

#include "core/counters.h"
#include "core/log.h"
#include "core/types.h"
#include "platform/seams.h"

int32_t lynd_exec_and_res(const char* const argv[], char* buf, int32_t size) {
    if (argv == nullptr || argv[0] == nullptr || buf == nullptr || size < 1)
        return -1;
    return lynd_count_tool_run(lynd::host().run_capture(argv, buf, static_cast<size_t>(size)));
}

bool lynd_uci_get_value(const char* path, char* value, size_t size) {
    if (path == nullptr || value == nullptr || size == 0) {
        LYND_ERR("invalid input ...\n");
        return false;
    }
    // The lookup parses the path in place, so it works on a copy.
    char work[LYND_UCI_PATH_MAX + 1] = {};
    std::strncpy(work, path, LYND_UCI_PATH_MAX);
    switch (lynd::uci().get(work, value, size)) {
    case lynd::UciResult::FOUND:
        return true;
    case lynd::UciResult::CONTEXT_FAILED:
        LYND_ERR("uci_alloc_context failed...\n");
        return false;
    case lynd::UciResult::NOT_FOUND:
    case lynd::UciResult::LOOKUP_FAILED:
        break;
    }
    return false;
}

uint32_t lynd_get_work_mode() {
    char mode[32] = {};
    char role[32] = {};
    (void)lynd_uci_get_value("sysmode.sysmode.mode", mode, sizeof mode);
    (void)lynd_uci_get_value("meshd.meshd.role", role, sizeof role);
    if (std::strncmp(mode, "router", 6) == 0 && std::strncmp(role, "controller", 10) == 0)
        return WORK_MODE_FAP;
    return WORK_MODE_RE;
}

#include "core/queries.h"

#include <cstring>

#include "core/counters.h"
#include "core/log.h"
#include "core/types.h"
#include "platform/host.h"
#include "platform/seams.h"

namespace {

// The command line for a log line: blanks between the words, anything but
// printable text shown as '?', cut to the buffer.
void tool_text(const char* const argv[], char* text, size_t size) {
    size_t n = 0;
    for (int i = 0; argv[i] != nullptr && n + 1 < size; i++) {
        if (i > 0)
            text[n++] = ' ';
        for (const char* c = argv[i]; *c != '\0' && n + 1 < size; c++)
            text[n++] = (*c >= 0x20 && *c < 0x7f) ? *c : '?';
    }
    text[n] = '\0';
}

// A run that did not end is one that failed, said once.
int finished_run(const char* const argv[], int rc) {
    if (rc == lynd::TOOL_TIMED_OUT) {
        char text[96];
        tool_text(argv, text, sizeof text);
        LYND_ERR("tool killed, no end within %d ms: %s", lynd::TOOL_DEADLINE_MS, text);
    }
    return lynd_count_tool_run(rc < 0 ? -1 : rc);
}

}  // namespace

int lynd_tool_capture(const char* const argv[], char* out, size_t size) {
    return finished_run(argv, lynd::host().run_capture(argv, out, size));
}

int lynd_tool_status(const char* const argv[]) { return finished_run(argv, lynd::host().run_status(argv)); }

int32_t lynd_exec_and_res(const char* const argv[], char* buf, int32_t size) {
    if (argv == nullptr || argv[0] == nullptr || buf == nullptr || size < 1)
        return -1;
    return lynd_tool_capture(argv, buf, static_cast<size_t>(size));
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

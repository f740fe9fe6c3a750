#include "core/state_file.h"

#include <cerrno>
#include <cstring>

#include "core/counters.h"
#include "core/log.h"
#include "core/shadow.h"
#include "platform/seams.h"

namespace {

struct state_file_status {
    const char* path;
    int obstacle;
};
state_file_status g_state_files[STATE_FILES_MAX];

state_file_status* status_of(const char* path) {
    for (state_file_status& s : g_state_files) {
        if (s.path == nullptr)
            s.path = path;
        if (std::strcmp(s.path, path) == 0)
            return &s;
    }
    return nullptr;
}

}  // namespace

void lynd_state_files_reset() {
    for (state_file_status& s : g_state_files)
        s = state_file_status{};
}

int lynd_state_file_obstacle(const char* path) {
    for (const state_file_status& s : g_state_files)
        if (s.path != nullptr && std::strcmp(s.path, path) == 0)
            return s.obstacle;
    return 0;
}

bool lynd_write_state_file(const char* path, const char* data, size_t len) {
    int err = 0;
    bool ok = lynd::host().write_file(path, data, len, &err);
    state_file_status* st = status_of(path);
    int last = st != nullptr ? st->obstacle : 0;
    if (ok) {
        if (last != 0)
            LYND_INFO("%s written again", path);
    } else {
        g_counters.state_file_failures++;
        if (err == 0)
            err = EIO;
        if (err != last)
            LYND_ERR("write %s: %s, tried again at the next run", path, std::strerror(err));
    }
    if (st != nullptr)
        st->obstacle = ok ? 0 : err;
    return ok;
}

bool lynd_write_steering_file(const char* path, const char* data, size_t len, const char* what) {
    return lynd_shadow_holds(what) || lynd_write_state_file(path, data, len);
}

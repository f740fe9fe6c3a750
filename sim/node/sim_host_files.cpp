#include "sim/node/sim_host.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "sim/node/sim_cpu.h"
#include "sim/node/sim_loop.h"

namespace lynd {

void SimHost::set_file(const std::string& path, const std::string& content) { files_[path] = content; }

bool SimHost::has_file(const std::string& path) const { return files_.count(path) != 0; }

std::string SimHost::file(const std::string& path) const {
    auto it = files_.find(path);
    return it == files_.end() ? std::string() : it->second;
}

long SimHost::read_file(const char* path, char* buf, size_t size) {
    auto it = files_.find(path);
    if (it == files_.end()) {
        if (cpu_ != nullptr && std::strcmp(path, "/proc/stat") == 0)
            return static_cast<long>(cpu_->proc_stat(clock_ != nullptr ? clock_->now_ms() : 0, buf, size));
        return driver_ != nullptr ? driver_->file(path, buf, size) : -1;
    }
    size_t n = std::min(size, it->second.size());
    std::memcpy(buf, it->second.data(), n);
    return static_cast<long>(n);
}

long SimHost::file_size(const char* path) {
    auto it = files_.find(path);
    return it == files_.end() ? -1 : static_cast<long>(it->second.size());
}

int SimHost::fs_space(const char*, FsSpace* out) {
    *out = fs_;
    return 0;
}

int SimHost::writes(const std::string& path) const {
    auto it = writes_.find(path);
    return it == writes_.end() ? 0 : it->second;
}

void SimHost::set_file_obstacle(const std::string& path, int error) {
    obstacles_[path] = error;
    // A directory stands where the file was.
    if (error == EISDIR)
        files_.erase(path);
}

bool SimHost::write_file(const char* path, const char* data, size_t len, int* err) {
    auto o = obstacles_.find(path);
    int why = o != obstacles_.end() ? o->second : 0;
    if (err != nullptr)
        *err = why;
    if (why != 0)
        return false;
    writes_[path]++;
    files_[path] = std::string(data, len);
    return true;
}

}  // namespace lynd

#include "sim/sim_host.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "sim/sim_loop.h"

namespace lynd {

void SimHost::set_tool(const std::string& cmdline, const std::string& output, int status) {
    tools_[cmdline] = Tool{output, status};
}

void SimHost::add_interface(const SimInterface& iface) { interfaces_.push_back(iface); }

const SimInterface* SimHost::find_interface(const std::string& name) const {
    for (const auto& i : interfaces_)
        if (i.name == name)
            return &i;
    return nullptr;
}

void SimHost::set_file(const std::string& path, const std::string& content) { files_[path] = content; }

bool SimHost::has_file(const std::string& path) const { return files_.count(path) != 0; }

std::string SimHost::file(const std::string& path) const {
    auto it = files_.find(path);
    return it == files_.end() ? std::string() : it->second;
}

size_t SimHost::count_logged(const std::string& needle) const {
    return static_cast<size_t>(std::count_if(console_.begin(), console_.end(), [&](const std::string& l) {
        return l.find(needle) != std::string::npos;
    }));
}

const SimHost::Tool* SimHost::lookup_tool(const char* const argv[]) {
    std::string cmdline;
    for (int i = 0; argv[i] != nullptr; i++) {
        if (i > 0)
            cmdline += ' ';
        cmdline += argv[i];
    }
    runs_.push_back(cmdline);
    auto it = tools_.find(cmdline);
    return it == tools_.end() ? nullptr : &it->second;
}

int SimHost::run_capture(const char* const argv[], char* out, size_t size) {
    const Tool* t = lookup_tool(argv);
    if (t == nullptr)
        return -1;
    size_t n = std::min(size, t->output.size());
    std::memcpy(out, t->output.data(), n);
    return static_cast<int>(n);
}

int SimHost::run_status(const char* const argv[]) {
    const Tool* t = lookup_tool(argv);
    return t == nullptr ? -1 : t->status;
}

void SimHost::console_write(const char* line, size_t len) {
    if (echo_)
        (void)!::write(STDERR_FILENO, line, len);
    if (len > 0 && line[len - 1] == '\n')
        len--;
    console_.emplace_back(line, len);
}

unsigned SimHost::if_nametoindex(const char* name) {
    const SimInterface* i = find_interface(name);
    return i == nullptr ? 0 : i->ifindex;
}

bool SimHost::if_indextoname(unsigned ifindex, char* name) {
    for (const auto& i : interfaces_) {
        if (i.ifindex == ifindex && ifindex != 0) {
            std::snprintf(name, IFNAME_LEN, "%s", i.name.c_str());
            return true;
        }
    }
    return false;
}

long SimHost::read_file(const char* path, char* buf, size_t size) {
    auto it = files_.find(path);
    if (it == files_.end())
        return -1;
    size_t n = std::min(size, it->second.size());
    std::memcpy(buf, it->second.data(), n);
    return static_cast<long>(n);
}

bool SimHost::write_file(const char* path, const char* data, size_t len) {
    files_[path] = std::string(data, len);
    return true;
}

int SimHost::close_fd(int) { return 0; }

timespec SimHost::monotonic_now() {
    int64_t ms = clock_ != nullptr ? clock_->now_ms() : 0;
    timespec ts{};
    ts.tv_sec = static_cast<time_t>(ms / 1000);
    ts.tv_nsec = static_cast<long>((ms % 1000) * 1000000);
    return ts;
}

time_t SimHost::wall_now() {
    // A fixed epoch keeps runs repeatable.
    return static_cast<time_t>(1700000000 + (clock_ != nullptr ? clock_->now_ms() / 1000 : 0));
}

}  // namespace lynd

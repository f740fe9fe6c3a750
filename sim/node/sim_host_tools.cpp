#include "sim/node/sim_host.h"

#include <algorithm>
#include <cstring>

namespace lynd {

void SimHost::set_tool(const std::string& cmdline, const std::string& output, int status) {
    tools_[cmdline] = Tool{output, status};
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
    if (it != tools_.end())
        return &it->second;
    if (driver_ != nullptr && driver_->tool(cmdline, &driven_.output, &driven_.status))
        return &driven_;
    return nullptr;
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

}  // namespace lynd

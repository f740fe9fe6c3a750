#include "sim/node/sim_host.h"

#include <algorithm>
#include <cstring>

#include "sim/node/sim_loop.h"

namespace lynd {

void SimHost::set_tool(const std::string& cmdline, const std::string& output, int status, SimToolMode mode) {
    tools_[cmdline] = Tool{output, status, mode};
}

int SimHost::run_into_deadline() {
    if (clock_ != nullptr)
        clock_->stall(TOOL_DEADLINE_MS);
    return TOOL_TIMED_OUT;
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
    const Tool* fixed = it != tools_.end() ? &it->second : nullptr;
    // A misbehaving tool without output of its own prints what the node's
    // radios would answer.
    bool from_driver = fixed == nullptr || (fixed->mode != SimToolMode::ANSWERS && fixed->output.empty());
    if (from_driver && driver_ != nullptr && driver_->tool(cmdline, &driven_.output, &driven_.status)) {
        driven_.mode = fixed != nullptr ? fixed->mode : SimToolMode::ANSWERS;
        return &driven_;
    }
    return fixed;
}

int SimHost::run_capture(const char* const argv[], char* out, size_t size) {
    const Tool* t = lookup_tool(argv);
    if (t == nullptr)
        return -1;
    if (t->mode == SimToolMode::HANGS)
        return run_into_deadline();
    if (t->mode == SimToolMode::ENDLESS) {
        const std::string& text = t->output.empty() ? std::string("y\n") : t->output;
        for (size_t at = 0; at < size; at += text.size())
            std::memcpy(out + at, text.data(), std::min(text.size(), size - at));
        return static_cast<int>(size);
    }
    size_t n = std::min(size, t->output.size());
    std::memcpy(out, t->output.data(), n);
    return static_cast<int>(n);
}

int SimHost::run_status(const char* const argv[]) {
    const Tool* t = lookup_tool(argv);
    if (t == nullptr)
        return -1;
    return t->mode == SimToolMode::ANSWERS ? t->status : run_into_deadline();
}

}  // namespace lynd

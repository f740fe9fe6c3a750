#include "sim/node/sim_host.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "sim/node/sim_loop.h"

namespace lynd {

void SimHost::add_interface(const SimInterface& iface) { interfaces_.push_back(iface); }

const SimInterface* SimHost::find_interface(const std::string& name) const {
    for (const auto& i : interfaces_)
        if (i.name == name)
            return &i;
    return nullptr;
}

// Whichever sink the daemon chose: a line is logged either way.
size_t SimHost::count_logged(const std::string& needle) const {
    auto has = [&](const std::string& l) { return l.find(needle) != std::string::npos; };
    return static_cast<size_t>(std::count_if(console_.begin(), console_.end(), has) +
                               std::count_if(syslog_.begin(), syslog_.end(), has));
}

void SimHost::console_write(const char* line, size_t len) {
    if (echo_)
        (void)!::write(STDERR_FILENO, line, len);
    if (len > 0 && line[len - 1] == '\n')
        len--;
    console_.emplace_back(line, len);
}

void SimHost::syslog_write(int priority, const char* line, size_t len) {
    std::string entry = "<" + std::to_string(priority) + ">" + std::string(line, len);
    if (echo_)
        (void)!::write(STDERR_FILENO, (entry + "\n").data(), entry.size() + 1);
    syslog_.push_back(std::move(entry));
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

HwAddrResult SimHost::get_hwaddr(const char* ifname, uint8_t* mac) {
    const SimInterface* i = find_interface(ifname);
    if (i == nullptr)
        return HwAddrResult::IOCTL_FAILED;
    std::memcpy(mac, i->mac, sizeof i->mac);
    return HwAddrResult::OK;
}

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

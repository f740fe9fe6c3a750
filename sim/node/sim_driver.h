// The simulated wireless driver: answers the driver requests (ioctls) that
// the daemon sends on its datagram sockets, and the vendor tools and /proc
// files that read the radios, when the scenario fixed no reply of its own.
#pragma once
#include <cstddef>
#include <string>

namespace lynd {

class SimDriver {
public:
    virtual ~SimDriver() = default;
    // The request's result (>= 0), or -errno.
    virtual int ioctl(unsigned long request, void* arg) = 0;
    // cmdline is the argument vector joined with single blanks; false when
    // the driver has nothing to say about that tool.
    virtual bool tool(const std::string& cmdline, std::string* output, int* status) {
        (void)cmdline, (void)output, (void)status;
        return false;
    }
    // A frame of len bytes left through the interface named ifname.
    virtual void frame_sent(const char* ifname, size_t len) { (void)ifname, (void)len; }
    // Fills buf with the file's text (at most size bytes); -1 when the
    // driver does not provide path.
    virtual long file(const char* path, char* buf, size_t size) {
        (void)path, (void)buf, (void)size;
        return -1;
    }
};

}  // namespace lynd

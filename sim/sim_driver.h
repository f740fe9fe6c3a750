// The simulated wireless driver: answers the driver requests (ioctls) that
// the daemon sends on its datagram sockets.
#pragma once

namespace lynd {

class SimDriver {
public:
    virtual ~SimDriver() = default;
    // The request's result (>= 0), or -errno.
    virtual int ioctl(unsigned long request, void* arg) = 0;
};

}  // namespace lynd

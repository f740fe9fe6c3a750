// Driver requests: a datagram socket that closes itself, and the request
// record addressed to one interface.
#pragma once
#include "wlan/qca/qca_ioctl.h"

class QcaSocket {
public:
    QcaSocket();
    ~QcaSocket();
    QcaSocket(const QcaSocket&) = delete;
    QcaSocket& operator=(const QcaSocket&) = delete;

    bool ok() const { return fd_ >= 0; }
    // The request's result (>= 0), or -errno.
    int request(unsigned long number, iw_request* req);

private:
    int fd_;
};

// A zeroed request for ifname. The name is cut to 15 characters and
// terminated, as the kernel itself reads it.
iw_request qca_request(const char* ifname);

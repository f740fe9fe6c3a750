#include "wlan/qca/qca_request.h"

#include <cstdio>

#include "platform/seams.h"

QcaSocket::QcaSocket() : fd_(lynd::host().dgram_socket()) {}

QcaSocket::~QcaSocket() {
    if (fd_ >= 0)
        (void)lynd::host().close_fd(fd_);
}

int QcaSocket::request(unsigned long number, iw_request* req) { return lynd::host().dev_ioctl(fd_, number, req); }

iw_request qca_request(const char* ifname) {
    iw_request req{};
    std::snprintf(req.name, sizeof req.name, "%s", ifname);
    return req;
}

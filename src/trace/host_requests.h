// What the daemon asked of the host, as a record names it (after the
// record's time and kind). The recorder adds
// the answer; a replay builds the same request and compares it.
#pragma once
#include <cstddef>
#include <cstdint>

#include "platform/driver_requests.h"
#include "trace/trace_line.h"

namespace lynd {

void req_run(TraceLine& l, const char* const argv[], size_t size);
void req_ifname(TraceLine& l, const char* name);
void req_read(TraceLine& l, const char* path, size_t size);
void req_write(TraceLine& l, const char* path, const char* data, size_t len);
void req_send(TraceLine& l, int fd, unsigned ifindex, uint16_t ethertype, const uint8_t* dst, const void* frame,
              size_t len);
// The fields of a driver request (an iw_request at arg) the daemon filled
// in, as its back-end described them in d; with no description, only the
// descriptor, number and interface.
void req_ioctl(TraceLine& l, int fd, unsigned long request, const void* arg, const DriverRequest* d);
// What the driver answered into the request.
void ioctl_answer(TraceLine& l, const void* arg, int rc, const DriverRequest* d);

}  // namespace lynd

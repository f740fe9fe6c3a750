// What the daemon asked of the host, as a record names it (after the
// record's time and kind). The recorder adds
// the answer; a replay builds the same request and compares it.
#pragma once
#include <cstddef>
#include <cstdint>

#include "trace/trace_line.h"

namespace lynd {

void req_run(TraceLine& l, const char* const argv[], size_t size);
void req_ifname(TraceLine& l, const char* name);
void req_read(TraceLine& l, const char* path, size_t size);
void req_write(TraceLine& l, const char* path, const char* data, size_t len);
void req_send(TraceLine& l, int fd, unsigned ifindex, uint16_t ethertype, const uint8_t* dst, const void* frame,
              size_t len);
// The fields of a driver request the daemon filled in.
void req_ioctl(TraceLine& l, int fd, unsigned long request, const void* arg);
// What the driver answered into the request.
void ioctl_answer(TraceLine& l, unsigned long request, const void* arg, int rc);

}  // namespace lynd

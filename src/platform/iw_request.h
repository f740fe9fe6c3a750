// The Linux kernel's wireless-extensions request record (struct iwreq): the
// record a driver request carries, whichever chipset answers it.
#pragma once
#include <cstddef>
#include <cstdint>

// A 16-byte interface name, then one of these.
struct iw_request {
    char name[16];
    union {
        struct {
            void* pointer;
            uint16_t length;
            uint16_t flags;
        } data;
        int32_t value;  // get-parameter: the parameter in, its value out
        uint32_t mode;
        struct {
            uint16_t family;
            uint8_t bytes[14];
        } addr;  // struct sockaddr; a MAC in its first 6 bytes
        uint8_t raw[16];
    } u;
};
static_assert(sizeof(void*) != 8 || offsetof(iw_request, u.data.length) == 24, "iwreq layout");
static_assert(offsetof(iw_request, u) == 16, "iwreq layout");

// Dummy frames that keep an idle wireless link active.
#pragma once
#include <cstddef>
#include <cstdint>

constexpr uint16_t DUMMY_ETHERTYPE = 0x893A;  // IEEE 1905.1
constexpr size_t DUMMY_FRAME_LEN = 1000;
constexpr int DUMMY_SEND_ATTEMPTS = 3;

// 1 with ifname's hardware address in mac_out, else 0.
int lynd_get_bridge_mac(const char* ifname, uint8_t* mac_out);

// Pure: destination, source, ethertype (big-endian), zeros to DUMMY_FRAME_LEN.
void lynd_build_dummy_frame(uint8_t* frame, const uint8_t* dst, const uint8_t* src);
// Sends one dummy frame to dst_mac out of ifname, trying up to 3 times: 1
// once the raw socket was open, whatever the sends did; else 0.
int lynd_activate_link(const char* ifname, const uint8_t* dst_mac);

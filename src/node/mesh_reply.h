// Readers of the mesh daemon's replies ("ubus call map ..."). Each takes the
// bytes the tool printed, not necessarily terminated, and trusts nothing.
#pragma once
#include <cstddef>
#include <cstdint>

// Replies are read into buffers of this size.
constexpr size_t LYND_MESH_REPLY_MAX = 1024;
// The backhaul name: 32 characters and the terminator.
constexpr size_t LYND_BH_ETH_NAME_LEN = 33;

// Pure: true when a findcontroller reply says ret 0 and carries a "mac" key;
// mac_out (6 bytes) then holds its octets, 0 where they do not parse.
bool lynd_parse_findcontroller_reply(const char* reply, size_t len, uint8_t* mac_out);

enum class bh_eth_reply {
    FAILED,   // no success code of 0
    NO_NAME,  // success, but no backhaul name
    NAME,     // success; name_out holds the name
};

// Pure: reads a get_bh_eth reply; name_out has LYND_BH_ETH_NAME_LEN bytes and
// is written only for NAME.
bh_eth_reply lynd_parse_bh_eth_reply(const char* reply, size_t len, char* name_out);

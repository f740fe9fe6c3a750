// Replies of the mesh daemon of any shape through their readers, as the tool
// leaves them: not terminated.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "core/mac.h"
#include "node/mesh_reply.h"
#include "fuzz/fuzz_seams.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz_seams();
    std::vector<char> reply(data, data + size);  // exact size: ASan sees any over-read
    uint8_t mac[LYND_MAC_LEN];
    (void)lynd_parse_findcontroller_reply(reply.data(), reply.size(), mac);
    char name[LYND_BH_ETH_NAME_LEN];
    bh_eth_reply r = lynd_parse_bh_eth_reply(reply.data(), reply.size(), name);
    if (r == bh_eth_reply::NAME && std::memchr(name, '\0', sizeof name) == nullptr)
        __builtin_trap();  // a name without its terminator
    std::vector<char> text(reply);
    text.push_back('\0');
    (void)lynd_parse_mac_text(text.data(), ':', mac);
    (void)lynd_parse_mac_text(text.data(), '-', mac);
    return 0;
}

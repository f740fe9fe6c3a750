#include "modules/path_selection/mac_index.h"

#include <cstring>

namespace {

size_t hash(const uint8_t* mac) {
    uint32_t h = 2166136261u;
    for (int i = 0; i < 6; i++)
        h = (h ^ mac[i]) * 16777619u;
    return h & (mac_index::SLOTS - 1);
}

// The slot holding mac, or the empty one where it would go.
size_t probe(const mac_index* ix, const uint8_t* mac) {
    size_t i = hash(mac);
    while (ix->key[i] != nullptr && std::memcmp(ix->key[i], mac, 6) != 0)
        i = (i + 1) & (mac_index::SLOTS - 1);
    return i;
}

}  // namespace

void mac_index_clear(mac_index* ix) {
    std::memset(ix->key, 0, sizeof ix->key);
    ix->count = 0;
}

bool mac_index_put(mac_index* ix, const uint8_t* mac, void* value, uint8_t tag) {
    size_t i = probe(ix, mac);
    if (ix->key[i] != nullptr)
        return true;
    if (ix->count == mac_index::MAX_KEYS)
        return false;
    ix->key[i] = mac;
    ix->value[i] = value;
    ix->tag[i] = tag;
    ix->count++;
    return true;
}

void* mac_index_get(const mac_index* ix, const uint8_t* mac, uint8_t* tag) {
    size_t i = probe(ix, mac);
    if (ix->key[i] == nullptr)
        return nullptr;
    if (tag != nullptr)
        *tag = ix->tag[i];
    return ix->value[i];
}

void mac_index_set_tag(mac_index* ix, const uint8_t* mac, uint8_t tag) {
    size_t i = probe(ix, mac);
    if (ix->key[i] != nullptr)
        ix->tag[i] = tag;
}

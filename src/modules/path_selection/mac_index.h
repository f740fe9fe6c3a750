// A fixed-size table from a MAC address to a record, rebuilt for each sync
// of the client records, so a table of 256 entries is not matched against
// 256 clients one by one.
#pragma once
#include <cstddef>
#include <cstdint>

struct mac_index {
    static constexpr size_t SLOTS = 1024;  // a power of two, four times the keys it holds
    static constexpr size_t MAX_KEYS = 512;
    const uint8_t* key[SLOTS];  // points at the MAC inside the record
    void* value[SLOTS];
    uint8_t tag[SLOTS];
    size_t count;
};

void mac_index_clear(mac_index* ix);
// The first value put for a MAC stays; false when the table is full.
bool mac_index_put(mac_index* ix, const uint8_t* mac, void* value, uint8_t tag);
// The value of mac, or null; its tag in *tag when found.
void* mac_index_get(const mac_index* ix, const uint8_t* mac, uint8_t* tag);
void mac_index_set_tag(mac_index* ix, const uint8_t* mac, uint8_t tag);

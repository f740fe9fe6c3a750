// The sizes the bridge library claims for its tables: the first fetch's
// answer, then the second, through the fetch that grows its buffer.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "bridge/hybrid_tables.h"
#include "fuzz/fuzz_check.h"
#include "fuzz/fuzz_seams.h"

namespace {

// Claims the sizes the input gives and fills whatever room it is handed.
class ClaimingBridge : public lynd::SimBridge {
public:
    int32_t claims[2] = {};
    int calls = 0;
    int allocs = 0;
    int frees = 0;
    void* bridgeAllocTableBuf(int size, const char* name) override {
        void* p = SimBridge::bridgeAllocTableBuf(size, name);
        allocs += p != nullptr;
        return p;
    }
    void bridgeFreeTableBuf(void* p) override {
        frees += p != nullptr;
        SimBridge::bridgeFreeTableBuf(p);
    }
    int bridgeTableAction(const char*, int, int* count, void*, int) override {
        int32_t claim = claims[calls++ % 2];
        bool fits = claim >= 0 && claim <= *count;
        *count = claim;
        return fits ? 0 : -1;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzSeams& s = fuzz_seams();
    ClaimingBridge bridge;
    std::memcpy(bridge.claims, data, size < sizeof bridge.claims ? size : sizeof bridge.claims);
    const lynd::Seams saved = lynd::install_seams({&s.loop, &s.host, &s.uci, &bridge, &s.bus});
    lynd_tables_reset();
    void* table = nullptr;
    int count = 0;
    int type = size > 8 && (data[8] & 1) ? LYND_TABLE_FDB : LYND_TABLE_HC;
    if (lynd_get_hyfi_bridge_table("br-lan", type, &table, &count) == 1) {
        fuzz_check(count >= 0 && count <= g_hyfi_tables.hyfi_table_capacity, "count within the buffer");
        bridge.bridgeFreeTableBuf(table);
    }
    fuzz_check(bridge.allocs == bridge.frees, "every buffer freed");
    lynd::install_seams(saved);
    return 0;
}

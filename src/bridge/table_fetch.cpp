#include "bridge/hybrid_tables.h"
#include "core/counters.h"
#include "core/log.h"
#include "platform/seams.h"

hyfi_table_state g_hyfi_tables = {HYFI_TABLE_INITIAL_CAPACITY};

int lynd_table_entry_size(int table_type) {
    switch (table_type) {
    case LYND_TABLE_HC:
        return HC_ENTRY_SIZE;
    case LYND_TABLE_FDB:
        return FDB_ENTRY_SIZE;
    default:
        return 0;
    }
}

void lynd_tables_reset() { g_hyfi_tables = hyfi_table_state{HYFI_TABLE_INITIAL_CAPACITY}; }

namespace {

// Far above any real bridge; keeps a confused reply from sizing a huge buffer.
constexpr int kMaxTableEntries = 16384;

}  // namespace

int lynd_get_hyfi_bridge_table(const char* bridge_name, int table_type, void** entries_out, int* count_out) {
    int size = lynd_table_entry_size(table_type);
    if (size == 0)
        return 0;
    lynd::KrelApi& krel = lynd::krel();
    int count = g_hyfi_tables.hyfi_table_capacity;
    void* buf = krel.bridgeAllocTableBuf(count * size, bridge_name);
    if (buf == nullptr) {
        LYND_ERR("alloac buffer error");
        g_counters.bridge_call_failures++;
        return 0;
    }
    if (krel.bridgeTableAction(bridge_name, table_type, &count, buf, 0) != 0) {
        krel.bridgeFreeTableBuf(buf);
        // A larger table says how much room it needs: one more try with that.
        if (count <= g_hyfi_tables.hyfi_table_capacity) {
            g_counters.bridge_call_failures++;
            return 0;
        }
        if (count > kMaxTableEntries) {
            LYND_ERR("table of %d entries is over the limit of %d", count, kMaxTableEntries);
            return 0;
        }
        g_hyfi_tables.hyfi_table_capacity = count;
        buf = krel.bridgeAllocTableBuf(count * size, bridge_name);
        if (buf == nullptr) {
            LYND_ERR("realloac buffer error");
            g_counters.bridge_call_failures++;
            return 0;
        }
        if (krel.bridgeTableAction(bridge_name, table_type, &count, buf, 0) != 0) {
            LYND_ERR("get table failed again");
            g_counters.bridge_call_failures++;
            krel.bridgeFreeTableBuf(buf);
            return 0;
        }
    }
    // Never hand out more entries than the buffer holds.
    int room = g_hyfi_tables.hyfi_table_capacity;
    *entries_out = buf;
    *count_out = count < 0 ? 0 : (count > room ? room : count);
    return 1;
}

int lynd_get_hyfi_bridge_hc_table(const char* bridge_name, void** entries_out, int* count_out) {
    return lynd_get_hyfi_bridge_table(bridge_name, LYND_TABLE_HC, entries_out, count_out);
}

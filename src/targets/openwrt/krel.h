// The vendor bridge control library, libkrel, as the daemon calls it.
// Results: 0 on success for every call but bridgeSetHCTableEntries and
// bridgeDelHCTableEntriesByMAC, where only -1 is failure.
#pragma once
#include <cstdint>

#include "platform/krel_calls.h"

extern "C" {

void* bridgeAllocTableBuf(int size, const char* bridge_name);
void bridgeFreeTableBuf(void* payload);
int bridgeTableAction(const char* bridge_name, int table_type, int* count, void* buf, int flags);
int netlink_msg(int msg_type, unsigned char* buf, int size, int protocol);

#define LYND_KREL_EXTERN(name, params, args, steers) int name params;
LYND_KREL_WRITES(LYND_KREL_EXTERN)
#undef LYND_KREL_EXTERN

}  // extern "C"

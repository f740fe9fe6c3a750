// The UCI seam on the router: libuci, one context per read.
#pragma once
#include "platform/uci_store.h"

namespace lynd {

class LibUciStore : public UciStore {
public:
    UciResult get(char* path, char* value, size_t size) override;
};

}  // namespace lynd

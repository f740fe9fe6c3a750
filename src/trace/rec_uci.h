// The UCI seam, recorded: each option read with its value or its absence.
#pragma once
#include "platform/uci_store.h"

namespace lynd {

class RecUci : public UciStore {
public:
    void set_inner(UciStore* inner) { in_ = inner; }
    UciStore* inner() const { return in_; }
    UciResult get(char* path, char* value, size_t size) override;

private:
    UciStore* in_ = nullptr;
};

}  // namespace lynd

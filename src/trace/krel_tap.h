// The bridge library's writes, each named as a record names it and handed to
// write() with the result of the library underneath (0 with none, as in a
// replay, which answers from the record).
#pragma once
#include "platform/krel_api.h"
#include "trace/krel_requests.h"

namespace lynd {

class KrelTap : public KrelApi {
public:
    void set_inner(KrelApi* inner) { in_ = inner; }
    KrelApi* inner() const { return in_; }

#define LYND_KREL_DECLARE(name, params, args, steers) int name params override;
    LYND_KREL_WRITES(LYND_KREL_DECLARE)
#undef LYND_KREL_DECLARE

protected:
    virtual int write(const KrelArgs& a, int rc) = 0;

    KrelApi* in_ = nullptr;
};

}  // namespace lynd

#include "trace/krel_tap.h"

namespace lynd {

#define LYND_KREL_TAP(name, params, args, steers) \
    int KrelTap::name params { return write(krel_args{#name} args, in_ == nullptr ? 0 : in_->name args); }
LYND_KREL_WRITES(LYND_KREL_TAP)
#undef LYND_KREL_TAP

}  // namespace lynd

#include "trace/rec_uci.h"

#include <cstring>

#include "trace/trace_sink.h"

namespace lynd {

UciResult RecUci::get(char* path, char* value, size_t size) {
    // libuci parses the path in place: the record keeps it as asked.
    TraceLine& l = trace_begin("uci");
    l.str("path", path);
    l.num("size", static_cast<int64_t>(size));
    UciResult rc = in_->get(path, value, size);
    l.num("rc", static_cast<int>(rc));
    if (rc == UciResult::FOUND && size > 0)
        l.text("value", value, strnlen(value, size));
    trace_emit();
    return rc;
}

}  // namespace lynd

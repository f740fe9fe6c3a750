// A trace's name from the bus or the configuration, and the first bytes of a
// file the recorder may replace: neither may read past what it was given.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "core/trace_name.h"
#include "fuzz/fuzz_check.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const char* head = reinterpret_cast<const char*>(data);
    (void)trace_head_is_ours(head, size);
    std::string name(head, size);
    name = name.substr(0, name.find('\0'));
    const char* why = trace_name_refusal(name.c_str());
    if (why[0] == '\0') {
        fuzz_check(name.find('/') == std::string::npos, "no slash in a name taken");
        fuzz_check(name.find("..") == std::string::npos, "no .. in a name taken");
        fuzz_check(name.size() <= TRACE_NAME_MAX, "a name taken fits");
    }
    return 0;
}

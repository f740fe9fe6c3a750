#include "core/exec.h"

#include "platform/seams.h"

int32_t lynd_exec_and_res(const char* const argv[], char* buf, int32_t size) {
    if (argv == nullptr || argv[0] == nullptr || buf == nullptr || size < 1)
        return -1;
    return lynd::host().run_capture(argv, buf, static_cast<size_t>(size));
}

#include "targets/openwrt/uci_store_libuci.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {
#include <uci.h>
}

namespace lynd {

namespace {

// libuci's own message, one line on standard error. uci_perror would append
// a newline to a static buffer on every call and, after about 127 calls,
// write past it; the allocating form leaves that buffer alone.
void report_lookup_error(uci_context* ctx) {
    char* text = nullptr;
    uci_get_errorstr(ctx, &text, "lookup ptr");
    if (text == nullptr)
        return;
    std::fprintf(stderr, "%.*s\n", static_cast<int>(std::strcspn(text, "\n")), text);
    std::free(text);
}

UciResult lookup(uci_context* ctx, char* path, char* value, size_t size) {
    uci_ptr ptr{};
    if (uci_lookup_ptr(ctx, &ptr, path, true) != UCI_OK) {
        report_lookup_error(ctx);
        return UciResult::LOOKUP_FAILED;
    }
    // A list has no single value: it counts as absent.
    if ((ptr.flags & uci_ptr::UCI_LOOKUP_COMPLETE) == 0 || ptr.o == nullptr || ptr.o->type != UCI_TYPE_STRING)
        return UciResult::NOT_FOUND;
    std::strncpy(value, ptr.o->v.string, size - 1);
    value[size - 1] = '\0';
    return UciResult::FOUND;
}

}  // namespace

UciResult LibUciStore::get(char* path, char* value, size_t size) {
    uci_context* ctx = uci_alloc_context();
    if (ctx == nullptr)
        return UciResult::CONTEXT_FAILED;
    uci_set_confdir(ctx, "/etc/config");
    uci_set_savedir(ctx, "/var/state");
    UciResult rc = size == 0 ? UciResult::NOT_FOUND : lookup(ctx, path, value, size);
    uci_free_context(ctx);
    return rc;
}

}  // namespace lynd

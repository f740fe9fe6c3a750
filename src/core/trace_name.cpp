#include "core/trace_name.h"

#include <cstring>

namespace {

bool name_char(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' || c == '_' ||
           c == '-';
}

bool starts(const char* s, size_t n, const char* with) {
    size_t w = std::strlen(with);
    return n >= w && std::memcmp(s, with, w) == 0;
}

}  // namespace

const char* trace_name_refusal(const char* name) {
    if (name == nullptr || name[0] == '\0')
        return "an empty name";
    size_t n = strnlen(name, TRACE_NAME_MAX + 1);
    if (n > TRACE_NAME_MAX)
        return "longer than 64 characters";
    if (std::strchr(name, '/') != nullptr)
        return "a path, not a file name";
    if (std::strstr(name, "..") != nullptr)
        return "a name with \"..\"";
    if (name[0] == '.')
        return "a name starting with '.'";
    for (size_t i = 0; i < n; i++)
        if (!name_char(name[i]))
            return "a character other than letters, digits, '.', '_' and '-'";
    return "";
}

bool trace_head_is_ours(const char* head, size_t n) {
    // {"t":-?DIGITS,"k":"header","lynd_trace":
    if (!starts(head, n, "{\"t\":"))
        return false;
    size_t i = 5;
    if (i < n && head[i] == '-')
        i++;
    size_t digits = i;
    while (i < n && i - digits < 20 && head[i] >= '0' && head[i] <= '9')
        i++;
    if (i == digits)
        return false;
    return starts(head + i, n - i, ",\"k\":\"header\",\"lynd_trace\":");
}

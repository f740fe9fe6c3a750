#include "sim/timeline/svg_text.h"

#include <cmath>
#include <cstdio>

namespace lynd {

namespace {

// Length of the valid UTF-8 sequence at s[i], or 0.
size_t utf8_len(const std::string& s, size_t i) {
    auto c = static_cast<unsigned char>(s[i]);
    size_t n = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 0;
    if (n == 0 || i + n > s.size())
        return 0;
    for (size_t k = 1; k < n; k++)
        if ((static_cast<unsigned char>(s[i + k]) >> 6) != 0x2)
            return 0;
    return n;
}

}  // namespace

std::string svg_escape(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size();) {
        size_t n = utf8_len(text, i);
        char c = text[i];
        if (n == 0 || (n == 1 && static_cast<unsigned char>(c) < 0x20) || c == 0x7f) {
            out += '?';
            i += n == 0 ? 1 : n;
            continue;
        }
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        case '\'': out += "&apos;"; break;
        default: out.append(text, i, n);
        }
        i += n;
    }
    return out;
}

std::string svg_shorten(const std::string& text, size_t max) {
    size_t chars = 0, i = 0;
    while (i < text.size() && chars < max) {
        size_t n = utf8_len(text, i);
        i += n == 0 ? 1 : n;
        chars++;
    }
    return i < text.size() ? text.substr(0, i) + "\xe2\x80\xa6" : text;
}

std::string svg_num(double v) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%.1f", std::isfinite(v) ? v : 0.0);
    return buf;
}

}  // namespace lynd

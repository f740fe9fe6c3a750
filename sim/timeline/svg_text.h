// Text and numbers as an SVG document may hold them.
#pragma once
#include <string>

namespace lynd {

// XML-escaped; control characters and bytes that are not UTF-8 become '?'.
std::string svg_escape(const std::string& text);
// At most max characters of text (whole UTF-8 sequences), "…" marking a cut.
std::string svg_shorten(const std::string& text, size_t max);
// One decimal, C notation; not-a-number and infinities as 0.
std::string svg_num(double v);

}  // namespace lynd

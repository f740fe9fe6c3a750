// Timeline entries as a scenario or a trace may hold them, worded for the
// picture: a label never shows JSON and never carries markup through.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/fuzz_check.h"
#include "sim/timeline/svg_text.h"
#include "sim/timeline/timeline_draw.h"
#include "sim/timeline/timeline_labels.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    size_t cut = text.find('\n');
    lynd::TimelineEntry e;
    constexpr int kinds = static_cast<int>(lynd::TimelineKind::KERNEL_LINK) + 1;
    e.kind = static_cast<lynd::TimelineKind>(data[0] % kinds);
    e.name = text.substr(0, cut);
    e.data = cut == std::string::npos ? "" : text.substr(cut + 1);
    std::string label = lynd::short_label(lynd::event_label(e), 30);
    fuzz_check(label.find('{') == std::string::npos, "no JSON in a label");
    fuzz_check(lynd::svg_escape(label + lynd::event_detail(e)).find('<') == std::string::npos, "markup escaped");
    (void)lynd::short_mac(e.name);
    return 0;
}

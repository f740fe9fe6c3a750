#include "sim/desk/trace_chain.h"

namespace lynd {

namespace {

std::string name_of(const std::vector<std::string>& names, size_t i) {
    return i < names.size() ? names[i] : "file " + std::to_string(i + 1);
}

bool same_recording(const TraceHeader& a, const TraceHeader& b) {
    return a.began == b.began && a.daemon == b.daemon && a.host_order == b.host_order && a.word_bits == b.word_bits &&
           a.args == b.args && a.config == b.config;
}

}  // namespace

std::string trace_chain_missing_start(const std::string& name, int part) {
    std::string older = part == 2 ? "part 1" : "parts 1 to " + std::to_string(part - 1);
    return name + ": part " + std::to_string(part) +
           " of a recording: the daemon's state at this file's start is not in the trace. Replay it after " +
           older + " of the same recording, in order (after one rotation FILE.1 holds the part before FILE: " +
           "lynd-sim replay FILE.1 FILE). A part rotated away is lost: to keep a whole run, record with a " +
           "larger \"record_size\" (or \"size\" of ubus call lynd record)\n";
}

bool trace_chain(std::vector<Trace> parts, const std::vector<std::string>& names, Trace* out, std::string* error) {
    *out = Trace{};
    if (parts.empty()) {
        *error = "no trace given\n";
        return false;
    }
    for (size_t i = 1; i < parts.size() && parts[0].header.part != 1; i++) {
        if (parts[i].header.part == 1) {
            *error = "the parts are out of sequence: " + name_of(names, i) + " is part 1 and " + name_of(names, 0) +
                     " part " + std::to_string(parts[0].header.part) + "; give them in order, part 1 first\n";
            return false;
        }
    }
    if (parts[0].header.part != 1) {
        *error = trace_chain_missing_start(name_of(names, 0), parts[0].header.part);
        return false;
    }
    for (size_t i = 1; i < parts.size(); i++) {
        const TraceHeader& prev = parts[i - 1].header;
        const TraceHeader& h = parts[i].header;
        std::string what = name_of(names, i) + " does not go on from " + name_of(names, i - 1) + ": ";
        if (!same_recording(prev, h)) {
            *error = what + "it is of another recording (its daemon, command line, configuration or start differ)\n";
            return false;
        }
        if (h.part != prev.part + 1) {
            *error = what + "part " + std::to_string(h.part) + " after part " + std::to_string(prev.part) +
                     "; give the parts in order, with none left out\n";
            return false;
        }
        const auto& before = parts[i - 1].records;
        const auto& now = parts[i].records;
        if (!before.empty() && !now.empty() && now.front().t < before.back().t) {
            *error = what + "its first record (" + std::to_string(now.front().t) + " ms) is older than the last one before (" +
                     std::to_string(before.back().t) + " ms)\n";
            return false;
        }
    }
    out->header = parts[0].header;
    for (auto& p : parts)
        for (auto& r : p.records)
            out->records.push_back(std::move(r));
    return true;
}

}  // namespace lynd

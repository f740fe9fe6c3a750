#include "sim/sweep/sweep_command.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "sim/sweep/sweep_generate.h"
#include "sim/sweep/sweep_pool.h"
#include "sim/sweep/sweep_report.h"
#include "sim/sweep/sweep_shrink.h"
#include "sim/sweep/sweep_wire.h"

namespace lynd {

namespace {

struct SweepArgs {
    uint64_t first = 1;
    uint64_t seeds = 100;
    double hours = 1;
    int jobs = 2;
    bool one = false;  // --seed
    const char* keep = nullptr;
    const char* file = nullptr;  // a scenario file checked instead of a seed
};

bool parse_args(int argc, char** argv, SweepArgs* a) {
    for (int i = 0; i + 1 < argc; i += 2) {
        const char* v = argv[i + 1];
        if (std::strcmp(argv[i], "--seeds") == 0)
            a->seeds = std::strtoull(v, nullptr, 10);
        else if (std::strcmp(argv[i], "--first") == 0)
            a->first = std::strtoull(v, nullptr, 10);
        else if (std::strcmp(argv[i], "--hours") == 0)
            a->hours = std::strtod(v, nullptr);
        else if (std::strcmp(argv[i], "--jobs") == 0)
            a->jobs = std::atoi(v);
        else if (std::strcmp(argv[i], "--seed") == 0)
            a->first = std::strtoull(v, nullptr, 10), a->one = true;
        else if (std::strcmp(argv[i], "--keep") == 0)
            a->keep = v;
        else if (std::strcmp(argv[i], "--file") == 0)
            a->file = v, a->one = true;
        else
            return false;
    }
    return argc % 2 == 0 && a->hours > 0 && a->hours <= 24 && a->jobs > 0 && (a->keep == nullptr || a->one);
}

int64_t duration_of(const SweepArgs& a) { return static_cast<int64_t>(a.hours * 3600); }

// A child's outcome; a child that died broke no_crash.
SweepOutcome outcome_of(const std::string& text) {
    SweepOutcome o;
    if (sweep_outcome_parse(text, &o))
        return o;
    SweepOutcome died;
    died.violations.push_back(SweepViolation{"no_crash", 0, "the run died"});
    died.counts.push_back(1);
    return died;
}

// One document's outcome, from a child of its own.
SweepOutcome run_in_child(json_object* doc, SweepAllocCounter count) {
    SweepOutcome o;
    sweep_pool(1, 1, [&](size_t) { return sweep_outcome_text(sweep_run(doc, count)); },
               [&](size_t, const std::string& text) { o = outcome_of(text); });
    return o;
}

bool breaks(const SweepOutcome& o, const std::string& invariant) {
    for (const auto& v : o.violations)
        if (v.invariant == invariant)
            return true;
    return false;
}

bool write_doc(const char* path, json_object* doc) {
    std::FILE* f = std::fopen(path, "w");
    if (f == nullptr)
        return false;
    const char* text = json_object_to_json_string_ext(doc, JSON_C_TO_STRING_PRETTY | JSON_C_TO_STRING_SPACED);
    bool ok = std::fputs(text, f) >= 0 && std::fputc('\n', f) != EOF;
    return std::fclose(f) == 0 && ok;
}

size_t length(json_object* doc, const char* key) {
    json_object* v = nullptr;
    return json_object_object_get_ex(doc, key, &v) && json_object_is_type(v, json_type_array)
               ? json_object_array_length(v)
               : 0;
}

// One seed: its violations, and with --keep the run as a scenario file,
// shrunk while its first violation still breaks.
int one_seed(const SweepArgs& a, SweepAllocCounter count) {
    json_object* doc = a.file != nullptr ? json_object_from_file(a.file) : sweep_generate(a.first, duration_of(a));
    if (doc == nullptr) {
        std::fprintf(stderr, "lynd-sim: %s: not a JSON document\n", a.file);
        return 2;
    }
    SweepOutcome o = run_in_child(doc, count);
    std::string label = a.file != nullptr ? a.file : "seed " + std::to_string(a.first);
    sweep_print_violations(stdout, label, o);
    json_object* kept = json_object_get(doc);
    if (!o.violations.empty() && a.keep != nullptr) {
        const SweepViolation first = o.violations.front();
        json_object_put(kept);
        kept = sweep_shrink(doc, first.at_ms,
                            [&](json_object* d) { return breaks(run_in_child(d, count), first.invariant); });
        std::string note = "Drawn by lynd-sim sweep from seed " + std::to_string(a.first) + ", shrunk while it breaks " +
                           first.invariant + ".";
        json_object_object_add(kept, "description", json_object_new_string(note.c_str()));
    }
    if (a.keep != nullptr) {
        if (!write_doc(a.keep, kept)) {
            std::fprintf(stderr, "lynd-sim: %s: cannot write the scenario\n", a.keep);
            json_object_put(kept);
            json_object_put(doc);
            return 2;
        }
        std::printf("%s kept in %s%s: %zu timeline events, %zu clients\n", label.c_str(), a.keep,
                    o.violations.empty() ? " (nothing broke)" : ", shrunk",
                    length(kept, "timeline"), length(kept, "clients"));
    } else if (o.violations.empty()) {
        std::printf("%s: nothing broke\n", label.c_str());
    }
    json_object_put(kept);
    json_object_put(doc);
    return o.violations.empty() ? 0 : 1;
}

int many_seeds(const SweepArgs& a, SweepAllocCounter count) {
    std::vector<SweepOutcome> outcomes(a.seeds);
    sweep_pool(
        a.seeds, a.jobs,
        [&](size_t i) {
            json_object* doc = sweep_generate(a.first + i, duration_of(a));
            std::string text = sweep_outcome_text(sweep_run(doc, count));
            json_object_put(doc);
            return text;
        },
        [&](size_t i, const std::string& text) { outcomes[i] = outcome_of(text); });
    SweepTotals totals;
    bool broke = false;
    for (size_t i = 0; i < outcomes.size(); i++) {
        sweep_print_violations(stdout, "seed " + std::to_string(a.first + i), outcomes[i]);
        sweep_totals_add(&totals, outcomes[i]);
        broke = broke || !outcomes[i].violations.empty();
    }
    sweep_print_table(stdout, totals);
    if (broke)
        std::printf("lynd-sim sweep --seed K --keep FILE writes a seed's run as a shrunk scenario\n");
    return broke ? 1 : 0;
}

}  // namespace

int sweep_command(int argc, char** argv, SweepAllocCounter count) {
    SweepArgs a;
    if (!parse_args(argc, argv, &a))
        return 2;
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    return a.one ? one_seed(a, count) : many_seeds(a, count);
}

}  // namespace lynd

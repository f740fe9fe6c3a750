#include "sim/sweep/sweep_run.h"

#include <cstddef>
#include <cstring>

#include "modules/module.h"
#include "modules/path_selection/hc_records.h"
#include "modules/path_selection/path_selection.h"
#include "config/lynd_config.h"
#include "sim/scenario/scenario.h"
#include "sim/sim_node.h"
#include "sim/sweep/sweep_facts.h"
#include "sim/sweep/sweep_invariants.h"
#include "sim/sweep/sweep_observe.h"

namespace lynd {

namespace {

// The daemon's period timer, when path selection runs.
LoopTimer* period_timer() {
    if (g_ps_conf == nullptr)
        return nullptr;
    lynd_module* m = lynd_get_mod_contex(&g_ps_conf->modules, LYND_MODULE_PATH_SELECTION);
    if (m == nullptr)
        return nullptr;
    return &static_cast<ps_module*>(lynd_container_of(m, offsetof(ps_module, base)))->period_timer;
}

class PeriodWatch : public LoopFireWatch {
public:
    PeriodWatch(SimNode* node, const SweepFacts& f, const std::vector<std::string>& bridges, SweepAllocCounter count)
        : facts_(f), observer_(node, bridges), stats_(f), count_(count) {}
    void before_fire(LoopTimer* t) override {
        in_period_ = t == period_timer();
        if (in_period_)
            observer_.before_run(allocations());
    }
    void after_fire(LoopTimer*) override {
        if (!in_period_)
            return;
        in_period_ = false;
        PeriodView v = observer_.after_run(allocations());
        std::vector<SweepViolation> found;
        sweep_check_period(facts_, history_, v, &found);
        for (auto& x : found)
            note(x);
        stats_.add(v);
        history_.push_back(std::move(v));
    }
    void note(const SweepViolation& x) {
        for (size_t i = 0; i < out.violations.size(); i++) {
            if (out.violations[i].invariant == x.invariant) {
                out.counts[i]++;
                return;
            }
        }
        out.violations.push_back(x);
        out.counts.push_back(1);
    }
    void finish(int64_t end_ms) {
        std::vector<SweepViolation> found;
        check_timer_at_end(facts_, history_, end_ms, &found);
        for (auto& x : found)
            note(x);
        out.stats = stats_.finish(end_ms);
    }

    SweepOutcome out;

private:
    size_t allocations() const { return count_ != nullptr ? count_() : 0; }

    SweepFacts facts_;
    SweepObserver observer_;
    SweepStatsBuilder stats_;
    SweepAllocCounter count_;
    SweepHistory history_;
    bool in_period_ = false;
};

}  // namespace

SweepOutcome sweep_run(json_object* doc, SweepAllocCounter count) {
    const char* text = json_object_to_json_string_ext(doc, JSON_C_TO_STRING_PLAIN);
    Scenario sc;
    SweepOutcome bad;
    if (!scenario_parse(text, std::strlen(text), &sc, &bad.error)) {
        bad.violations.push_back(SweepViolation{"no_crash", 0, "the scenario does not load: " + bad.error});
        bad.counts.push_back(1);
        return bad;
    }
    SweepFacts facts = sweep_facts(doc);
    SimNode node(sc);
    node.host().set_echo(false);
    std::vector<std::string> bridges;
    for (const auto& b : sc.bridges)
        bridges.push_back(b.name);
    PeriodWatch watch(&node, facts, bridges, count);
    node.loop().set_fire_watch(&watch);
    RunOutcome o = node.run("lynd", {});
    node.loop().set_fire_watch(nullptr);
    watch.finish(o.virtual_ms);
    if (o.exit_status != 0 || node.host().count_logged("<LYND_FATAL>") > 0)
        watch.note(SweepViolation{"no_crash", o.virtual_ms,
                                  "the daemon ended with status " + std::to_string(o.exit_status)});
    return watch.out;
}

}  // namespace lynd

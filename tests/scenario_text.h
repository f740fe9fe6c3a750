// Scenarios written inline in tests, or bundled, and runs of them that leave
// the test's own seams in place.
#pragma once
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "file_text.h"
#include "platform/seams.h"
#include "sim/scenario/scenario.h"
#include "sim/sim_node.h"

inline bool parse(const std::string& text, lynd::Scenario* sc, std::string* error) {
    return lynd::scenario_parse(text.data(), text.size(), sc, error);
}

inline lynd::Scenario parsed(const std::string& text, const std::string& what = "") {
    lynd::Scenario sc;
    std::string error;
    EXPECT_TRUE(parse(text, &sc, &error)) << what << ": " << error;
    return sc;
}

inline lynd::Scenario bundled(const std::string& name) {
    return parsed(slurp(std::string(LYND_SOURCE_DIR) + "/scenarios/" + name + ".json"), name);
}

inline lynd::RunOutcome run_kept(lynd::SimNode& node, const std::vector<std::string>& args = {}) {
    const lynd::Seams saved = lynd::installed_seams();
    lynd::RunOutcome o = node.run("lynd", args);
    lynd::install_seams(saved);
    return o;
}

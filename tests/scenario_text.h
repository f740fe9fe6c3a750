// Scenarios written inline in tests.
#pragma once
#include <string>

#include "sim/scenario/scenario.h"

inline bool parse(const std::string& text, lynd::Scenario* sc, std::string* error) {
    return lynd::scenario_parse(text.data(), text.size(), sc, error);
}

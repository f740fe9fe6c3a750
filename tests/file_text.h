// A file on the PC read whole, for tests that look at what was written.
#pragma once
#include <fstream>
#include <sstream>
#include <string>

inline std::string slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

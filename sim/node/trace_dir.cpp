#include "sim/node/trace_dir.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace lynd {

namespace {

std::vector<std::string> names_in(const std::string& dir) {
    std::vector<std::string> names;
    DIR* d = opendir(dir.c_str());
    if (d == nullptr)
        return names;
    while (dirent* e = readdir(d)) {
        std::string n = e->d_name;
        if (n != "." && n != "..")
            names.push_back(n);
    }
    closedir(d);
    std::sort(names.begin(), names.end());
    return names;
}

bool ends_with(const std::string& s, const std::string& tail) {
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

}  // namespace

std::string trace_dir_make() {
    char d[] = "/tmp/lynd-sim-XXXXXX";
    return mkdtemp(d) != nullptr ? d : "";
}

std::string trace_dir_at(const char* dir) {
    (void)mkdir(dir, 0700);
    char* real = realpath(dir, nullptr);
    std::string out = real != nullptr ? real : "";
    std::free(real);
    return out;
}

std::vector<std::vector<std::string>> trace_dir_recordings(const std::string& dir) {
    std::vector<std::string> names = names_in(dir);
    std::vector<std::vector<std::string>> out;
    for (const auto& n : names) {
        if (ends_with(n, ".1") && std::count(names.begin(), names.end(), n.substr(0, n.size() - 2)) > 0)
            continue;  // goes with the file it rotated from
        std::vector<std::string> files;
        if (std::count(names.begin(), names.end(), n + ".1") > 0)
            files.push_back(dir + "/" + n + ".1");
        files.push_back(dir + "/" + n);
        out.push_back(files);
    }
    return out;
}

void trace_dir_remove(const std::string& dir) {
    for (const auto& n : names_in(dir))
        (void)unlink((dir + "/" + n).c_str());
    (void)rmdir(dir.c_str());
}

}  // namespace lynd

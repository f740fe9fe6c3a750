#include "sim/node/state_dir.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace lynd {

namespace {

bool make_dir(const std::string& path, std::string* error) {
    if (::mkdir(path.c_str(), 0755) == 0 || errno == EEXIST)
        return true;
    *error = path + ": " + std::strerror(errno);
    return false;
}

// Creates every directory above file, from dir down.
bool make_parents(const std::string& dir, const std::string& file, std::string* error) {
    for (size_t slash = file.find('/', dir.size() + 1); slash != std::string::npos;
         slash = file.find('/', slash + 1)) {
        if (!make_dir(file.substr(0, slash), error))
            return false;
    }
    return true;
}

}  // namespace

bool write_whole_file(const std::string& path, const std::string& data, std::string* error) {
    std::FILE* f = std::fopen(path.c_str(), "wb");
    bool ok = f != nullptr && std::fwrite(data.data(), 1, data.size(), f) == data.size();
    if (f != nullptr && std::fclose(f) != 0)
        ok = false;
    if (!ok)
        *error = path + ": " + std::strerror(errno);
    return ok;
}

std::string state_path(const std::string& dir, const std::string& path) {
    std::string rel;
    size_t i = 0;
    while (i < path.size()) {
        size_t end = path.find('/', i);
        if (end == std::string::npos)
            end = path.size();
        std::string part = path.substr(i, end - i);
        if (part == "..")
            return "";
        if (!part.empty() && part != ".")
            rel += "/" + part;
        i = end + 1;
    }
    return rel.empty() ? "" : dir + rel;
}

bool write_state_dir(const SimHost& host, const std::string& dir, std::string* error) {
    if (!make_dir(dir, error))
        return false;
    for (const auto& kv : host.files()) {
        std::string target = state_path(dir, kv.first);
        if (target.empty()) {
            *error = kv.first + ": not a path below the node's root";
            return false;
        }
        if (!make_parents(dir, target, error) || !write_whole_file(target, kv.second, error))
            return false;
    }
    return true;
}

}  // namespace lynd

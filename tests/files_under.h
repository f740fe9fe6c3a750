// The files below a directory of the source tree whose names end in one of
// the suffixes given, at any depth.
#pragma once
#include <dirent.h>
#include <sys/stat.h>

#include <initializer_list>
#include <string>
#include <vector>

inline bool ends_with(const std::string& name, const std::string& suffix) {
    return name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
}

inline void files_under(const std::string& dir, std::initializer_list<const char*> suffixes,
                        std::vector<std::string>* out) {
    DIR* d = opendir(dir.c_str());
    if (d == nullptr)
        return;
    while (dirent* e = readdir(d)) {
        std::string name = e->d_name, path = dir + "/" + name;
        struct stat st {};
        if (name == "." || name == ".." || stat(path.c_str(), &st) != 0)
            continue;
        if (S_ISDIR(st.st_mode))
            files_under(path, suffixes, out);
        for (const char* s : suffixes)
            if (!S_ISDIR(st.st_mode) && ends_with(name, s))
                out->push_back(path);
    }
    closedir(d);
}

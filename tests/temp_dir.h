// A private directory below /tmp for one test, gone with its files after.
#pragma once
#include <string>

#include "sim/node/trace_dir.h"

struct TempDir {
    TempDir() : path(lynd::trace_dir_make()) {}
    ~TempDir() {
        if (!path.empty())
            lynd::trace_dir_remove(path);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    std::string path;
};

// Runs of a sweep, each in a child process of its own (a daemon that dies
// is one result), up to jobs at once.
#pragma once
#include <cstddef>
#include <functional>
#include <string>

namespace lynd {

// body(i) runs in a child; its text reaches done(i, text), or done(i, "")
// when the child died or ran out of time. done runs in the caller.
void sweep_pool(size_t n, int jobs, const std::function<std::string(size_t)>& body,
                const std::function<void(size_t, const std::string&)>& done);

}  // namespace lynd

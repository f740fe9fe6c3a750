// A long run cut into equal spans of time, each told by its counts: what
// the summary view draws instead of every sample and every event.
#pragma once
#include <map>
#include <string>
#include <vector>

#include "sim/timeline/timeline_trace.h"

namespace lynd {

constexpr double kMaxBuckets = 96;

struct PathBucket {
    double state_secs[6] = {};
    double rate_min = 0;
    double rate_max = 0;
    double rate_sum = 0;
    double util_sum = 0;
    int samples = 0;
    int state_changes = 0;
};

struct Bucket {
    double from = 0;
    double to = 0;
    std::vector<PathBucket> paths;
    double cpu_max = -1;  // -1: no sample
    int moves = 0;
    int events = 0;
    int port_changes[2] = {};  // broadcast, preferred
    std::string last_port[2];
    std::map<std::string, int> reasons;
};

// Round minutes or hours such that a run has at most kMaxBuckets of them.
double bucket_seconds(double duration);
std::vector<Bucket> make_buckets(const TimelineTrace& tr, double size);

}  // namespace lynd

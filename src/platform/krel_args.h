// A bridge-library write as one record: what a trace stores and a replay
// compares, and what a stand-in prints. What a call does not take stays empty.
#pragma once
#include <cstdint>

namespace lynd {

struct KrelArgs {
    const char* fn;
    const char* br;
    const char* ifname = nullptr;
    const char* other = nullptr;  // the second interface name
    const unsigned char* mac = nullptr;
    const unsigned char* id = nullptr;
    int nums = 0;
    int64_t num[3] = {};
};

// krel_args("bridgeSetIFPath")(br, ifname, path): the record of a call, by
// the shape of its arguments.
struct krel_args {
    const char* fn;

    KrelArgs operator()(const char* br) const { return KrelArgs{fn, br}; }
    KrelArgs operator()(const char* br, const char* ifname) const { return KrelArgs{fn, br, ifname}; }
    KrelArgs operator()(const char* br, int n) const { return numbers(br, nullptr, 1, n); }
    KrelArgs operator()(const char* br, uint32_t n) const { return numbers(br, nullptr, 1, n); }
    KrelArgs operator()(const char* br, const char* ifname, int n) const { return numbers(br, ifname, 1, n); }
    KrelArgs operator()(const char* br, const char* ifname, int a, int b) const {
        return numbers(br, ifname, 2, a, b);
    }
    KrelArgs operator()(const char* br, int a, int b, int c) const { return numbers(br, nullptr, 3, a, b, c); }
    KrelArgs operator()(const char* br, const char* ifname, int n, const char* other) const {
        KrelArgs a = numbers(br, ifname, 1, n);
        a.other = other;
        return a;
    }
    KrelArgs operator()(const char* br, const unsigned char* mac) const {
        return KrelArgs{fn, br, nullptr, nullptr, mac};
    }
    KrelArgs operator()(const char* br, const unsigned char* mac, const unsigned char* id, const char* port,
                        const char* vlan) const {
        return KrelArgs{fn, br, port, vlan, mac, id};
    }

private:
    KrelArgs numbers(const char* br, const char* ifname, int count, int64_t a, int64_t b = 0, int64_t c = 0) const {
        return KrelArgs{fn, br, ifname, nullptr, nullptr, nullptr, count, {a, b, c}};
    }
};

}  // namespace lynd

#include <cstring>

#include "platform/bus.h"

namespace lynd {

namespace {

// The first attribute of each wanted name and type stays.
void take(const bus_policy* policy, int policy_len, const BusAttr** tb, const BusAttr& attr, BusAttr* found) {
    if (attr.name == nullptr)
        return;
    for (int i = 0; i < policy_len; i++) {
        if (tb[i] != nullptr || policy[i].type != attr.type || std::strcmp(policy[i].name, attr.name) != 0)
            continue;
        found[i] = attr;
        tb[i] = &found[i];
    }
}

}  // namespace

int bus_parse(const bus_policy* policy, int policy_len, const BusAttr** tb, BusAttr* found, const BusMessage& msg) {
    for (int i = 0; i < policy_len; i++)
        tb[i] = nullptr;
    if (msg.count == 0 || msg.malformed)
        return -1;
    if (msg.walk == nullptr) {
        for (size_t a = 0; a < msg.count; a++)
            take(policy, policy_len, tb, msg.attrs[a], found);
        return 0;
    }
    BusAttr attr{};
    for (size_t pos = 0; msg.walk(msg.raw, msg.raw_len, &pos, &attr);)
        take(policy, policy_len, tb, attr, found);
    return 0;
}

bool bus_find(const BusMessage& msg, const char* name, BusAttr* out) {
    if (msg.malformed)
        return false;
    if (msg.walk == nullptr) {
        for (size_t a = 0; a < msg.count; a++) {
            if (msg.attrs[a].name != nullptr && std::strcmp(msg.attrs[a].name, name) == 0) {
                *out = msg.attrs[a];
                return true;
            }
        }
        return false;
    }
    BusAttr attr{};
    for (size_t pos = 0; msg.walk(msg.raw, msg.raw_len, &pos, &attr);) {
        if (attr.name != nullptr && std::strcmp(attr.name, name) == 0) {
            *out = attr;
            return true;
        }
    }
    return false;
}

}  // namespace lynd

#include <cstring>

#include "platform/bus.h"

namespace lynd {

int bus_parse(const bus_policy* policy, int policy_len, const BusAttr** tb, const BusMessage& msg) {
    for (int i = 0; i < policy_len; i++)
        tb[i] = nullptr;
    if (msg.count == 0 || msg.malformed)
        return -1;
    for (size_t a = 0; a < msg.count; a++) {
        const BusAttr& attr = msg.attrs[a];
        if (attr.name == nullptr)
            continue;
        for (int i = 0; i < policy_len; i++) {
            if (tb[i] == nullptr && policy[i].type == attr.type && std::strcmp(policy[i].name, attr.name) == 0)
                tb[i] = &attr;
        }
    }
    return 0;
}

}  // namespace lynd

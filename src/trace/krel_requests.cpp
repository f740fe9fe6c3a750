#include "trace/krel_requests.h"


namespace lynd {

void req_krel(TraceLine& l, const KrelArgs& a) {
    static const char* const kNum[] = {"n", "m", "o"};
    l.str("fn", a.fn);
    l.str("br", a.br);
    if (a.ifname != nullptr)
        l.str("if", a.ifname);
    if (a.other != nullptr)
        l.str("if2", a.other);
    if (a.mac != nullptr)
        l.hex("mac", a.mac, 6);
    if (a.id != nullptr)
        l.hex("id", a.id, 6);
    for (int i = 0; i < a.nums && i < 3; i++)
        l.num(kNum[i], a.num[i]);
}

}  // namespace lynd

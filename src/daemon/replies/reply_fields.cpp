#include "daemon/replies/status_replies.h"

void put_ints(lynd::BusReply& r, std::initializer_list<reply_int> fields) {
    for (const reply_int& f : fields)
        r.put_int(f.name, f.value);
}

void put_flags(lynd::BusReply& r, std::initializer_list<reply_flag> fields) {
    for (const reply_flag& f : fields)
        r.put_bool(f.name, f.value);
}

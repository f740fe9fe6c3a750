// Arguments of the bus object's calls built from arbitrary JSON, through
// the explain and shadow readers.
#include <json-c/json.h>

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "daemon/replies/status_replies.h"
#include "fuzz/fuzz_check.h"
#include "sim/node/bus_json.h"

namespace {

// An accepted MAC reads back as the text it came from, case aside.
void check_mac(const lynd::BusMessage& msg, const explain_query& q) {
    lynd::BusAttr a{};
    fuzz_check(lynd::bus_find(msg, "mac", &a) && a.type == lynd::BusType::STRING, "a MAC comes from a string");
    char text[LYND_MAC_TEXT_LEN];
    lynd_mac_text(q.mac, text);
    for (int i = 0; i < LYND_MAC_TEXT_LEN - 1; i++) {
        bool sep = i % 3 == 2;
        fuzz_check(sep || std::tolower(static_cast<unsigned char>(a.str[i])) == text[i], "MAC read back");
    }
    fuzz_check(a.str[LYND_MAC_TEXT_LEN - 1] == '\0', "MAC text ends at 17");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    json_tokener* tok = json_tokener_new();
    json_object* obj = json_tokener_parse_ex(tok, reinterpret_cast<const char*>(data), static_cast<int>(size));
    json_tokener_free(tok);
    lynd::BusJsonMessage m;
    if (lynd::bus_message_from_json(obj, &m)) {
        explain_query q;
        if (explain_query_parse(m.msg, &q) == lynd::BUS_STATUS_OK) {
            if (q.by_mac)
                check_mac(m.msg, q);
            else
                fuzz_check(q.path[0] != '\0' && strnlen(q.path, LYND_NAME_LEN) < LYND_NAME_LEN, "path terminated");
        }
        bool enable = false;
        (void)shadow_query_parse(m.msg, &enable);
    }
    json_object_put(obj);
    return 0;
}

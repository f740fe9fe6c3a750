#include "sim/scenario/scenario_messages.h"

#include <cstring>

#include "core/event_records.h"
#include "event/netlink_datagram.h"
#include "sim/node/netlink_craft.h"
#include "sim/scenario/message_fields.h"
#include "sim/scenario/scenario_squat.h"

namespace lynd {

namespace {

constexpr TypeName kBridgeTypes[] = {
    {MSG_NEW_HC_ENTRY, "new_hc_entry", "hc entry"},  {MSG_BCAST_UPDATE, "bcast_update", "bcast update"},
    {MSG_BCAST_UPDATE_2, "bcast_update_2", "bcast update 2"}, {MSG_FDB_UPDATE, "fdb_update", "fdb update"},
    {MSG_RECONFIGURE, "reconfigure", "reconfigure"},  {MSG_RECONFIGURE_2, "reconfigure_2", "reconfigure 2"},
    {0, nullptr, nullptr}};

constexpr TypeName kLinkTypes[] = {
    {NL_RTM_NEWLINK, "newlink", "newlink"}, {NL_RTM_DELLINK, "dellink", "dellink"}, {0, nullptr, nullptr}};

constexpr size_t kMaxIfname = 15;

constexpr TypeName kIwEvents[] = {{NL_IWEVEXPIRED, "expired", "expired"}, {0, nullptr, nullptr}};

void hc_entry_fields(JsonReader& r, json_object* o, const Scenario& sc, const std::string& what, Crafted* out) {
    static const char* const keys[] = {"mac", "id", "dst", "src", "packets", "bytes", nullptr};
    hc_entry e{};
    std::string dst, src;
    int64_t packets = 0, bytes = 0;
    if (!json_only_keys(r, o, keys, what.c_str()))
        return;
    if (!mac_member(r, o, "mac", what, e.mac) && r.ok)
        r.fail(what + " needs a \"mac\"");
    std::memcpy(e.id, e.mac, sizeof e.id);
    (void)mac_member(r, o, "id", what, e.id);
    (void)port_member(r, o, "dst", sc, UINT32_MAX, what, &e.dst_port, &dst);
    (void)port_member(r, o, "src", sc, UINT32_MAX, what, &e.src_port, &src);
    (void)json_get_int(r, o, "packets", 0, INT64_MAX, &packets);
    (void)json_get_int(r, o, "bytes", 0, INT64_MAX, &bytes);
    e.pkts = packets;
    e.bytes = static_cast<uint64_t>(bytes);
    out->body.append(reinterpret_cast<const char*>(&e), sizeof e);
    if (out->entries++ == 0)
        out->label = "hc entry " + mac_words(e.mac) + " " + src + " → " + dst;
    out->detail += " [" + mac_words(e.mac) + " id " + mac_words(e.id) + " " + src + " → " + dst + " packets " +
                   std::to_string(packets) + " bytes " + std::to_string(bytes) + "]";
}

void fdb_entry_fields(JsonReader& r, json_object* o, const Scenario& sc, const std::string& what, Crafted* out) {
    static const char* const keys[] = {"mac", "port", "local", "ageing", nullptr};
    fdb_entry e{};
    std::string port;
    uint32_t index = 0;
    bool local = false;
    int64_t ageing = 0;
    if (!json_only_keys(r, o, keys, what.c_str()))
        return;
    if (!mac_member(r, o, "mac", what, e.mac) && r.ok)
        r.fail(what + " needs a \"mac\"");
    (void)port_member(r, o, "port", sc, 0xffff, what, &index, &port);
    (void)json_get_bool(r, o, "local", &local);
    (void)json_get_int(r, o, "ageing", 0, UINT32_MAX, &ageing);
    e.port_lo = static_cast<uint8_t>(index & 0xff);
    e.port_hi = static_cast<uint8_t>(index >> 8);
    e.is_local = local ? 1 : 0;
    e.ageing_timer = static_cast<uint32_t>(ageing);
    out->body.append(reinterpret_cast<const char*>(&e), sizeof e);
    std::string words = mac_words(e.mac) + " " + port + (local ? " local" : "");
    if (out->entries++ == 0)
        out->label = "fdb entry " + words;
    out->detail += " [" + words + " ageing " + std::to_string(ageing) + "]";
}

void bridge_body(JsonReader& r, json_object* nl, const Scenario& sc, uint16_t type, Crafted* c) {
    if (json_object* hc = json_member(nl, "hc_entry")) {
        if (type != MSG_NEW_HC_ENTRY)
            r.fail("\"hc_entry\" goes with type 3 (a mismatch is written in \"body_hex\")");
        entries(r, hc, "hc_entry", sc, hc_entry_fields, c);
    } else if (json_object* fdb = json_member(nl, "fdb_entry")) {
        if (type != MSG_FDB_UPDATE)
            r.fail("\"fdb_entry\" goes with type 7 (a mismatch is written in \"body_hex\")");
        entries(r, fdb, "fdb_entry", sc, fdb_entry_fields, c);
    } else if (hex_member(r, nl, "body_hex", &c->body)) {
        if (c->body.size() > kMaxCrafted - NLMSG_HEADER_LEN)
            r.fail("\"body_hex\" holds more than a datagram");
    } else if (const char* words = words_of(kBridgeTypes, type)) {
        c->label = std::string("bridge ") + words;
        c->detail = c->label;
    }
}

void bridge_message(JsonReader& r, json_object* nl, const Scenario& sc, TimelineEntry* e) {
    static const char* const keys[] = {"type", "len", "body_hex", "raw_hex", "hc_entry", "fdb_entry", nullptr};
    if (!json_is(nl, json_type_object) || !json_only_keys(r, nl, keys, "the message")) {
        if (r.ok)
            r.fail("\"netlink\" is an object of fields");
        return;
    }
    if (json_member(nl, "raw_hex") != nullptr) {
        if (json_object_object_length(nl) != 1)
            r.fail("\"raw_hex\" is the whole datagram: no other key goes with it");
        (void)hex_member(r, nl, "raw_hex", &e->data);
        return;
    }
    bool hc = json_member(nl, "hc_entry") != nullptr, fdb = json_member(nl, "fdb_entry") != nullptr;
    if (static_cast<int>(hc) + fdb + (json_member(nl, "body_hex") != nullptr) > 1) {
        r.fail("one body at most: \"hc_entry\", \"fdb_entry\" or \"body_hex\"");
        return;
    }
    uint16_t type = hc ? MSG_NEW_HC_ENTRY : MSG_FDB_UPDATE;
    if (!type_member(r, nl, "type", kBridgeTypes, &type) && r.ok && !hc && !fdb)
        r.fail("a message without \"hc_entry\" or \"fdb_entry\" needs a \"type\"");
    Crafted c;
    if (r.ok)
        bridge_body(r, nl, sc, type, &c);
    e->data = craft_nlmsg(type, c.body);
    e->label = c.label;
    e->detail = c.label.empty() ? "" : c.label + (c.detail == c.label ? "" : ":" + c.detail);
    lying_len(r, nl, e);
}

void iw_event_fields(JsonReader& r, json_object* o, const Scenario&, const std::string& what, Crafted* out) {
    static const char* const keys[] = {"event", "station", "len", nullptr};
    uint16_t cmd = 0;
    uint8_t station[6] = {};
    int64_t len = -1;
    if (!json_only_keys(r, o, keys, what.c_str()))
        return;
    if (!type_member(r, o, "event", kIwEvents, &cmd) && r.ok)
        r.fail(what + " needs an \"event\"");
    bool named = mac_member(r, o, "station", what, station);
    (void)json_get_int(r, o, "len", 0, 0xffff, &len);
    out->body += craft_iw_event(cmd, named ? station : nullptr, len);
    const char* words = words_of(kIwEvents, cmd);
    std::string said = (words != nullptr ? std::string(words) : "event " + hex_words(cmd)) +
                       (named ? " " + mac_words(station) : "") + (len >= 0 ? " len " + std::to_string(len) : "");
    if (out->entries++ == 0)
        out->label = said;
    out->detail += " [" + said + "]";
}

void kernel_link(JsonReader& r, json_object* msg, const Scenario& sc, TimelineEntry* e) {
    static const char* const keys[] = {"type", "interface", "flags", "change", "wireless", "len", nullptr};
    if (!json_is(msg, json_type_object) || !json_only_keys(r, msg, keys, "the message")) {
        if (r.ok)
            r.fail("\"rtnetlink\" is an object of fields");
        return;
    }
    uint16_t type = NL_RTM_NEWLINK;
    uint32_t ifindex = 0;
    std::string name;
    int64_t flags = 0, change = 0;
    (void)type_member(r, msg, "type", kLinkTypes, &type);
    (void)port_member(r, msg, "interface", sc, INT32_MAX, "the message", &ifindex, &name);
    (void)json_get_int(r, msg, "flags", 0, UINT32_MAX, &flags);
    (void)json_get_int(r, msg, "change", 0, UINT32_MAX, &change);
    std::string body = craft_ifinfo(ifindex, static_cast<uint32_t>(flags), static_cast<uint32_t>(change));
    Crafted events;
    if (json_object* w = json_member(msg, "wireless"); w != nullptr && r.ok) {
        if (!json_is(w, json_type_array))
            r.fail("\"wireless\" is a list of events");
        else if (json_object_array_length(w) > 0)
            entries(r, w, "wireless", sc, iw_event_fields, &events);
        body += craft_rtattr(NL_IFLA_WIRELESS, events.body);
    }
    if (body.size() > kMaxCrafted - NLMSG_HEADER_LEN)
        r.fail("the message grows past " + std::to_string(kMaxCrafted) + " bytes");
    const char* words = words_of(kLinkTypes, type);
    e->label = (words != nullptr ? std::string(words) : "link message " + std::to_string(type)) + " " + name +
               (events.label.empty() ? "" : " " + events.label);
    e->detail = e->label + " flags " + hex_words(static_cast<uint32_t>(flags)) + " change " +
                hex_words(static_cast<uint32_t>(change)) + events.detail;
    e->data = craft_nlmsg(type, body);
    lying_len(r, msg, e);
}

bool only_entry_keys(JsonReader& r, json_object* o, const char* kind, bool station) {
    const char* const keys[] = {"at", "after", "repeat", "from", kind, station ? "station" : nullptr, nullptr};
    return json_only_keys(r, o, keys, "the timeline entry");
}

void bridge_entry(JsonReader& r, json_object* o, const Scenario& sc, TimelineEntry* e) {
    e->kind = TimelineKind::NETLINK;
    if (only_entry_keys(r, o, "netlink", false))
        bridge_message(r, json_member(o, "netlink"), sc, e);
}

void kernel_link_entry(JsonReader& r, json_object* o, const Scenario& sc, TimelineEntry* e) {
    e->kind = TimelineKind::KERNEL_LINK;
    if (only_entry_keys(r, o, "rtnetlink", false))
        kernel_link(r, json_member(o, "rtnetlink"), sc, e);
}

void station_expiry_entry(JsonReader& r, json_object* o, const Scenario& sc, TimelineEntry* e) {
    e->kind = TimelineKind::STATION_EXPIRED;
    if (!only_entry_keys(r, o, "station_expired", true) || !json_get_string(r, o, "station_expired", &e->name, kMaxIfname))
        return;
    bool known = false;
    for (const auto& i : sc.interfaces)
        known = known || i.name == e->name;
    if (!known)
        r.fail("names an interface the node does not have: " + e->name);
    uint8_t station[6];
    if (mac_member(r, o, "station", "the expiry", station))
        e->data.assign(reinterpret_cast<const char*>(station), sizeof station);
}

using EntryReader = void (*)(JsonReader& r, json_object* o, const Scenario& sc, TimelineEntry* e);

// Reads the entry and its sender; a problem is recorded naming the entry
// by its kind and time.
void read_entry(JsonReader& r, json_object* o, const Scenario& sc, TimelineEntry* e, const char* kind,
                EntryReader read) {
    std::string problem;
    JsonReader local{&problem};
    read(local, o, sc, e);
    parse_datagram_sender(local, o, e);
    if (!local.ok)
        r.fail(std::string(kind) + " entry at " + std::to_string(e->at_ms / 1000) + " s: " + problem);
}

}  // namespace

void parse_bridge_message(JsonReader& r, json_object* o, const Scenario& sc, TimelineEntry* e) {
    read_entry(r, o, sc, e, "netlink", bridge_entry);
}

void parse_kernel_link(JsonReader& r, json_object* o, const Scenario& sc, TimelineEntry* e) {
    read_entry(r, o, sc, e, "rtnetlink", kernel_link_entry);
}

void parse_station_expiry(JsonReader& r, json_object* o, const Scenario& sc, TimelineEntry* e) {
    read_entry(r, o, sc, e, "station_expired", station_expiry_entry);
}

}  // namespace lynd

// Messages a scenario writes by their fields, as the daemon's own readers
// take them: the same record on every CPU the suite runs on.
#include <cstring>
#include <string>

#include "bridge/table_entries.h"
#include "core/wire.h"
#include "event/netlink_datagram.h"
#include "sim/node/netlink_craft.h"
#include "sim/scenario/scenario.h"
#include "sim/timeline/timeline_labels.h"
#include "scenario_text.h"
#include "sim_fixture.h"

namespace {

using lynd::Scenario;
// The daemon's readers log what they refuse.
using ScenarioMessages = SimNodeTest;

const char* const kNode = R"("node": {"interfaces": [{"name": "eth1", "ifindex": 3}, {"name": "ath12", "ifindex": 12},
    {"name": "ath0", "ifindex": 20}, {"name": "ath1", "ifindex": 21}]})";

// The timeline of one entry on a node with four interfaces.
bool parse_entry(const std::string& entry, Scenario* sc, std::string* error) {
    return parse(std::string("{") + kNode + R"(, "timeline": [{"at": 5, )" + entry + "}]}", sc, error);
}

Scenario entry(const std::string& e) { return parsed(std::string("{") + kNode + R"(, "timeline": [{"at": 5, )" + e + "}]}", e); }

const uint8_t* bytes(const std::string& s) { return reinterpret_cast<const uint8_t*>(s.data()); }

// The bridge event the daemon makes of a datagram.
bridge_event received(const std::string& datagram) {
    bridge_event be{};
    EXPECT_TRUE(event_hyfi_datagram(bytes(datagram), datagram.size(), &be));
    return be;
}

TEST_F(ScenarioMessages, HcEntriesAreReadAsTheRecordsWritten) {
    Scenario sc = entry(R"("netlink": {"hc_entry": [
        {"mac": "02:00:00:00:0a:01", "dst": "ath12", "src": "ath0", "packets": 72623859790382856,
         "bytes": 1230066625199609624},
        {"mac": "02:00:00:00:0a:02", "id": "02:00:00:00:0b:02", "dst": 4294967295, "src": 258}]})");
    bridge_event be = received(sc.timeline[0].data);
    EXPECT_EQ(uint32_t{MSG_NEW_HC_ENTRY}, be.msg_type);
    ASSERT_EQ(2 * sizeof(hc_entry), be.data_len);
    hc_entry e[2];
    std::memcpy(e, be.data, sizeof e);
    const uint8_t mac[6] = {2, 0, 0, 0, 0x0a, 1}, id[6] = {2, 0, 0, 0, 0x0b, 2};
    EXPECT_EQ(0, std::memcmp(mac, e[0].mac, 6));
    EXPECT_EQ(0, std::memcmp(mac, e[0].id, 6));  // the MAC, when no id is given
    EXPECT_EQ(12u, e[0].dst_port);
    EXPECT_EQ(20u, e[0].src_port);
    EXPECT_EQ(INT64_C(0x0102030405060708), e[0].pkts);
    EXPECT_EQ(UINT64_C(0x1112131415161718), e[0].bytes);
    EXPECT_EQ(0, std::memcmp(id, e[1].id, 6));
    EXPECT_EQ(0xffffffffu, e[1].dst_port);
    EXPECT_EQ(258u, e[1].src_port);
    EXPECT_EQ(2u, lynd::announced_hc_entries(sc.timeline[0].data).size());
}

TEST_F(ScenarioMessages, AnFdbEntryCarriesItsPortInBothHalves) {
    Scenario sc = entry(R"("netlink": {"fdb_entry": {"mac": "02:00:00:00:aa:01", "port": 277, "local": true,
        "ageing": 300}})");
    bridge_event be = received(sc.timeline[0].data);
    EXPECT_EQ(uint32_t{MSG_FDB_UPDATE}, be.msg_type);
    ASSERT_EQ(sizeof(fdb_entry), be.data_len);
    fdb_entry e;
    std::memcpy(&e, be.data, sizeof e);
    EXPECT_EQ(0xaa, e.mac[4]);
    EXPECT_EQ(277u, fdb_entry_port(e));
    EXPECT_EQ(1, e.is_local);
    EXPECT_EQ(300u, e.ageing_timer);
    sc = entry(R"("netlink": {"fdb_entry": {"mac": "02:00:00:00:aa:01", "port": "ath1"}})");
    std::memcpy(&e, received(sc.timeline[0].data).data, sizeof e);
    EXPECT_EQ(21u, fdb_entry_port(e));
    EXPECT_EQ(0, e.is_local);
}

// Bodiless messages by number or name; the kernel's link messages as the
// wireless reader walks them.
TEST_F(ScenarioMessages, TypesByNameAndKernelLinkMessages) {
    const std::pair<const char*, uint16_t> types[] = {
        {R"("netlink": {"type": "bcast_update"})", 5},  {R"("netlink": {"type": "bcast_update_2"})", 6},
        {R"("netlink": {"type": "reconfigure"})", 11}, {R"("netlink": {"type": 12})", 12},
        {R"("rtnetlink": {"interface": 12})", NL_RTM_NEWLINK},
        {R"("rtnetlink": {"interface": "ath12", "type": "dellink"})", NL_RTM_DELLINK},
    };
    for (const auto& c : types) {
        Scenario sc;
        std::string error;
        ASSERT_TRUE(parse_entry(c.first, &sc, &error)) << c.first << ": " << error;
        const std::string& d = sc.timeline[0].data;
        EXPECT_TRUE(nl_first_msg_ok(bytes(d), d.size())) << c.first;
        EXPECT_EQ(c.second, nl_first_msg_type(bytes(d), d.size())) << c.first;
    }
    const std::pair<const char*, bool> wireless[] = {
        {R"([{"event": "expired", "station": "02:00:00:00:0c:01"}])", true},
        {R"([{"event": 35605}, {"event": "expired"}])", true},
        {R"([{"event": 35605, "station": "02:00:00:00:0c:01"}])", false},
        {R"([{"event": "expired", "len": 8}])", false},
        {R"([])", false},
    };
    for (const auto& c : wireless) {
        Scenario sc;
        std::string error;
        ASSERT_TRUE(parse_entry(std::string(R"("rtnetlink": {"interface": "ath12", "flags": 4163, "wireless": )") +
                                    c.first + "}",
                                &sc, &error))
            << c.first << ": " << error;
        const std::string& d = sc.timeline[0].data;
        ASSERT_TRUE(nl_first_msg_ok(bytes(d), d.size()));
        EXPECT_EQ(12u, load_u32(bytes(d) + IFINFOMSG_INDEX_OFFSET));
        EXPECT_EQ(4163u, load_u32(bytes(d) + IFINFOMSG_INDEX_OFFSET + 4));
        EXPECT_EQ(c.second, nl_wifi_parse_attrs(bytes(d) + IFLA_ATTRS_OFFSET, d.size() - IFLA_ATTRS_OFFSET))
            << c.first;
    }
}

TEST_F(ScenarioMessages, AFieldFormMayLieAboutItsLength) {
    Scenario sc;
    std::string error;
    const char* entry = R"({"mac": "02:00:00:00:0a:03", "dst": "ath12", "src": "ath0"})";
    ASSERT_TRUE(parse_entry(std::string(R"("netlink": {"len": 200, "hc_entry": )") + entry + "}", &sc, &error))
        << error;
    const std::string& d = sc.timeline[0].data;
    EXPECT_EQ(16 + sizeof(hc_entry), d.size());
    EXPECT_EQ(200u, nl_first_msg_len(bytes(d), d.size()));
    bridge_event be{};
    EXPECT_FALSE(event_hyfi_datagram(bytes(d), d.size(), &be));
    EXPECT_TRUE(lynd::announced_hc_entries(d).empty());  // the bridge holds no such entry
    EXPECT_EQ("hc entry 02:..:0a:03 ath0 → ath12 len 200", lynd::event_label(sc.timeline[0]));

    ASSERT_TRUE(parse_entry(std::string(R"("netlink": {"len": 20, "hc_entry": )") + entry + "}", &sc, &error));
    EXPECT_EQ(4u, received(sc.timeline[0].data).data_len);
    ASSERT_TRUE(parse_entry(R"("rtnetlink": {"interface": "ath12", "len": 4})", &sc, &error)) << error;
    EXPECT_FALSE(nl_first_msg_ok(bytes(sc.timeline[0].data), sc.timeline[0].data.size()));
}

TEST_F(ScenarioMessages, EachWrongFieldIsRefusedWhereItStands) {
    const std::pair<const char*, const char*> cases[] = {
        {R"("netlink": {"typ": 3})", "netlink entry at 5 s: unknown key \"typ\" in the message"},
        {R"("netlink": {"hc_entry": {"mac": "02:00:00:00:0a:01", "dts": "ath12", "src": "ath0"}})",
         "netlink entry at 5 s: unknown key \"dts\" in \"hc_entry\""},
        {R"("netlink": {"hc_entry": [{"mac": "02:00:00:00:0a:01", "dst": 1, "src": 1}, {"packet": 1}]})",
         "unknown key \"packet\" in \"hc_entry\" 1"},
        {R"("netlink": {"fdb_entry": {"mac": "02:00:00:00:aa:01", "port": "eth1", "is_local": true}})",
         "unknown key \"is_local\" in \"fdb_entry\""},
        {R"("rtnetlink": {"interface": "ath12", "flag": 1})", "rtnetlink entry at 5 s: unknown key \"flag\""},
        {R"("rtnetlink": {"interface": "ath12", "wireless": [{"event": "expired", "sta": "x"}]})",
         "unknown key \"sta\" in \"wireless\" 0"},
        {R"("netlink": {"type": 11}, "form": 7)", "netlink entry at 5 s: unknown key \"form\" in the timeline entry"},
        {R"("station_expired": "ath12", "staton": "02:00:00:00:0c:01")",
         "station_expired entry at 5 s: unknown key \"staton\""},
        {R"("netlink": {"hc_entry": {"mac": "02:00:00:00:0a:01", "dst": "ath13", "src": "ath0"}})",
         "\"dst\" of \"hc_entry\" names an interface the node does not have: ath13"},
        {R"("netlink": {"hc_entry": {"dst": "ath12", "src": "ath0"}})", "\"hc_entry\" needs a \"mac\""},
        {R"("netlink": {"hc_entry": {"mac": "02:00:00:00:0a:01", "dst": "ath12"}})", "needs \"src\""},
        {R"("netlink": {"fdb_entry": {"mac": "02:00:00:00:aa:01", "port": 65536}})", "index from 0 to 65535"},
        {R"("netlink": {"type": 7, "hc_entry": {"mac": "02:00:00:00:0a:01", "dst": 1, "src": 1}})", "goes with type 3"},
        {R"("netlink": {"body_hex": "00", "fdb_entry": {"mac": "02:00:00:00:aa:01", "port": 3}})", "one body at most"},
        {R"("netlink": {"raw_hex": "0000", "len": 3})", "no other key goes with it"},
        {R"("netlink": {"type": "reconfigured"})", "one of new_hc_entry, bcast_update"},
        {R"("netlink": {})", "needs a \"type\""},
        {R"("netlink": {"type": 11, "len": -1})", "\"len\" must be a whole number from 0 to 4294967295"},
        {R"("netlink": {"hc_entry": []})", "lists 1 to"},
        {R"("rtnetlink": {"wireless": []})", "the message needs \"interface\""},
        {R"("rtnetlink": {"interface": "ath12", "wireless": [{"station": "02:00:00:00:0c:01"}]})", "needs an \"event\""},
        {R"("station_expired": "ath12", "station": "02:00")", "\"station\" of the expiry must be a MAC"},
    };
    for (const auto& c : cases) {
        Scenario sc;
        std::string error;
        EXPECT_FALSE(parse_entry(c.first, &sc, &error)) << c.first;
        EXPECT_NE(std::string::npos, error.find(c.second)) << c.first << " -> " << error;
    }
}

// The picture tells a message by its fields; bytes as written stay bytes.
TEST_F(ScenarioMessages, LabelsSayTheFields) {
    const std::pair<const char*, const char*> cases[] = {
        {R"("netlink": {"hc_entry": {"mac": "02:00:00:00:0a:01", "dst": "ath12", "src": "ath0"}})",
         "hc entry 02:..:0a:01 ath0 → ath12"},
        {R"("netlink": {"hc_entry": [{"mac": "02:00:00:00:0a:01", "dst": 12, "src": 99},
            {"mac": "02:00:00:00:0a:02", "dst": 3, "src": 20}]})",
         "hc entry 02:..:0a:01 99 → ath12 +1"},
        {R"("netlink": {"fdb_entry": {"mac": "02:00:00:00:aa:01", "port": "eth1", "local": true}})",
         "fdb entry 02:..:aa:01 eth1 local"},
        {R"("netlink": {"type": "reconfigure_2"})", "bridge reconfigure 2"},
        {R"("netlink": {"type": 3, "body_hex": "0200"})", "netlink type 3"},
        {R"("rtnetlink": {"interface": "ath12", "wireless": [{"event": "expired", "station": "02:00:00:00:0c:01"}]})",
         "newlink ath12 expired 02:..:0c:01"},
        {R"("station_expired": "ath12", "station": "02:00:00:00:0c:01")", "station expired ath12 02:..:0c:01"},
        {R"("station_expired": "ath12")", "station expired ath12"},
    };
    for (const auto& c : cases) {
        Scenario sc;
        std::string error;
        ASSERT_TRUE(parse_entry(c.first, &sc, &error)) << c.first << ": " << error;
        EXPECT_EQ(c.second, lynd::event_label(sc.timeline[0])) << c.first;
        EXPECT_EQ(std::string::npos, lynd::event_detail(sc.timeline[0]).find('\0')) << c.first;
    }
}

}  // namespace

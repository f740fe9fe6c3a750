// lynd-check: its verdict as an exit status, and the mesh mistakes it
// points at.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "config/config.h"
#include "file_text.h"
#include "sim_fixture.h"
#include "targets/check/config_check.h"

namespace {

class ConfigCheckTest : public SimNodeTest {
protected:
    int check(const std::string& text, bool strict = false, bool brief = false) {
        host.set_file("/etc/lynd.json", text);
        char* buf = nullptr;
        size_t len = 0;
        std::FILE* out = open_memstream(&buf, &len);
        int rc = config_check_file("/etc/lynd.json", config_check_options{strict, brief}, out);
        std::fclose(out);
        report.assign(buf, len);
        std::free(buf);
        return rc;
    }
    bool says(const std::string& line) const { return report.find(line + "\n") != std::string::npos; }
    std::string report;
};

constexpr const char* kClean = R"({"enable": true,
    "bridges": {"br-lan": {"loop_avoidance": true, "path_selection": true}},
    "param": {"short_period": 2, "period": 5},
    "interfaces": {"ath12": {"type": "5g", "path": true, "nonrelay": true}, "ath1": {"type": "5g"}}})";

TEST_F(ConfigCheckTest, ExitStatusIsTheVerdict) {
    EXPECT_EQ(CHECK_CLEAN, check(kClean, true));
    EXPECT_TRUE(says("0 warnings"));
    EXPECT_TRUE(says("  period: 6000 ms, short_period: 2000 ms"));  // rounded up to a multiple
    const std::string warned = R"({"enable": true, "nonrelay": true})";
    EXPECT_EQ(CHECK_CLEAN, check(warned));
    EXPECT_TRUE(says("warning: nonrelay: unknown key, ignored"));
    EXPECT_EQ(CHECK_WARNINGS, check(warned, true));
    EXPECT_EQ(CHECK_REFUSED, check("{\"enable\": ", true));
    EXPECT_TRUE(says("refused: line 1, column 12: unexpected end of data"));
    EXPECT_EQ(CHECK_REFUSED, check(R"({"interfaces": {"ath12": {"type": "5G"}}})"));
    // The brief form is the one line the init script logs.
    EXPECT_EQ(CHECK_REFUSED, check(R"({"interfaces": {"ath12": {"type": "5G"}}})", false, true));
    EXPECT_EQ("/etc/lynd.json: refused: interfaces.ath12.type: \"5G\" is not one of ethernet, 2.4g, 5g, 5g_2, 6g\n",
              report);
    EXPECT_EQ(CHECK_WARNINGS, check(warned, true, true));
    EXPECT_EQ("/etc/lynd.json: 1 warning\n", report);
    EXPECT_EQ(CHECK_CLEAN, check(kClean, true, true));
    EXPECT_EQ("", report);
}

TEST_F(ConfigCheckTest, RelayRolesTheWrongWayRoundAreWarnings) {
    EXPECT_EQ(CHECK_WARNINGS, check(R"({"enable": true, "bridges": {"br-lan": {"loop_avoidance": true}},
        "interfaces": {"ath12": {"type": "5g", "path": true}, "ath02": {"type": "2.4g"},
                       "eth1": {"type": "ethernet", "path": true, "nonrelay": true},
                       "ath1": {"type": "5g", "nonrelay": true}, "ath0": {"type": "2.4g"}}})", true));
    EXPECT_TRUE(says("warning: interfaces.ath12: a backhaul uplink left relay: it forwards every broadcast, so "
                     "broadcasts loop through the mesh; set \"nonrelay\": true"));
    EXPECT_TRUE(says("warning: interfaces.ath02: a backhaul uplink left relay: it forwards every broadcast, so "
                     "broadcasts loop through the mesh; set \"nonrelay\": true"));
    EXPECT_TRUE(says("warning: interfaces.ath1: an access point marked nonrelay: its clients get broadcasts only "
                     "while it is the chosen broadcast port; remove \"nonrelay\""));
    EXPECT_EQ(std::string::npos, report.find("interfaces.ath0:"));
    EXPECT_EQ(std::string::npos, report.find("interfaces.eth1:"));
    EXPECT_TRUE(says("3 warnings"));
}

TEST_F(ConfigCheckTest, RivalsForOnePathSlotAreNamed) {
    EXPECT_EQ(CHECK_WARNINGS, check(R"({"enable": true, "interfaces": {
        "eth1": {"type": "ethernet", "path": true, "nonrelay": true},
        "eth2": {"type": "ethernet", "path": true, "nonrelay": true},
        "eth3": {"type": "ethernet", "nonrelay": true}}})", true));
    EXPECT_TRUE(says("warning: interfaces.eth1: not a path: eth3, later in the file, takes the only ethernet path "
                     "slot; only the last non-relay interface of a type is a path"));
    EXPECT_TRUE(says("warning: interfaces.eth2: not a path: eth3, later in the file, takes the only ethernet path "
                     "slot; only the last non-relay interface of a type is a path"));
    // The shipped file keeps its second uplink for loop avoidance only.
    EXPECT_EQ(CHECK_CLEAN, check(slurp(LYND_SOURCE_DIR "/openwrt/files/lynd.json"), true));
    EXPECT_TRUE(says("note: interfaces.eth1: not a path: eth2, later in the file, takes the only ethernet path slot"));
}

TEST_F(ConfigCheckTest, BridgeMembershipIsReadWhereTheInterfacesExist) {
    const std::string conf = R"({"enable": true, "bridges": {"br-lan": {"loop_avoidance": true}},
        "interfaces": {"ath12": {"type": "5g", "path": true, "nonrelay": true},
                       "eth1": {"type": "ethernet", "path": true, "nonrelay": true}}})";
    EXPECT_EQ(CHECK_CLEAN, check(conf, true));
    EXPECT_TRUE(says("note: interfaces: 2 path interfaces are not on this machine: bridge membership not checked"));
    host.add_interface({"br-lan", 20, {}});
    host.add_interface({"ath12", 12, {}});
    host.add_interface({"eth1", 3, {}});
    EXPECT_EQ(CHECK_WARNINGS, check(conf, true));
    EXPECT_TRUE(says("warning: interfaces.ath12: a path interface that is not in any bridge"));
    EXPECT_TRUE(says("warning: bridges.br-lan: loop avoidance without a non-relay port in the bridge: no uplink is "
                     "marked \"nonrelay\""));
    host.set_file("/sys/class/net/ath12/brport/state", "3\n");
    host.set_file("/sys/class/net/eth1/brport/state", "3\n");
    host.set_file("/sys/class/net/br-lan/brif/eth1/state", "3\n");
    EXPECT_EQ(CHECK_CLEAN, check(conf, true));
}

TEST_F(ConfigCheckTest, ADisabledFileIsANoteAndAMissingPeriodAWarning) {
    EXPECT_EQ(CHECK_CLEAN, check(R"({"enable": false})", true));
    EXPECT_TRUE(says("note: enable: not true: the daemon exits at once and does nothing"));
    EXPECT_EQ(CHECK_WARNINGS, check(R"({"enable": true, "bridges": {"br-lan": {"path_selection": true}}})", true));
    EXPECT_TRUE(says("warning: param.period: 0 with path selection on bridge br-lan: paths are never rated"));
}

}  // namespace

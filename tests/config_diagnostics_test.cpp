// What the loader says about a broken or mistaken file: the place and the
// reason for every refusal, and one WARN per problem it gets over.
#include <string>
#include <vector>

#include "config/config.h"
#include "sim_fixture.h"

namespace {

class ConfigDiagnosticsTest : public SimNodeTest {
protected:
    // The refusal reason, "" when the file loads.
    std::string refusal(const char* path) {
        conf = lynd_config{};
        config_report r{};
        r.sink = [](void*, config_severity, const char*, const char*) {};
        config_parse_result rc = config_read(&conf, path, &r);
        EXPECT_EQ(rc == config_parse_result::OK, r.refusal[0] == '\0') << path;
        return r.refusal;
    }
    // The WARN lines of loading text, at the level that shows them.
    std::vector<std::string> warnings(const std::string& text) {
        host.set_file("/w.json", text);
        host.clear_console();
        g_lynd_dgb_lvl = LYND_LVL_WARN;
        conf = lynd_config{};
        config_load(&conf, "/w.json");
        std::vector<std::string> out;
        for (const std::string& l : host.console_lines())
            out.push_back(l.substr(l.find("] ") + 2));
        return out;
    }
    lynd_config conf{};
};

TEST_F(ConfigDiagnosticsTest, EveryRefusedFileSaysWhereAndWhy) {
    struct Case {
        const char* path;
        std::string text;
        const char* why;
    };
    const std::vector<Case> cases = {
        {"/empty.json", "", "line 1, column 1: the file is empty"},
        {"/cut.json", "{\n  \"enable\": true,\n  \"bridges\": ", "line 3, column 14: unexpected end of data"},
        {"/text.json", "enable=1", "line 1, column 1: unexpected character"},
        {"/null.json", "null\n", "file: the top level is null, not an object"},
        {"/deep.json", std::string(40, '[') + std::string(40, ']'), "line 1, column 33: nesting too deep"},
        {"/big.json", std::string(LYND_CONFIG_MAX_SIZE + 100, ' '),
         "file: 262244 bytes; a configuration must be under 262144 (256 KiB)"},
        {"/full.json", std::string(LYND_CONFIG_MAX_SIZE - 2, ' ') + "{}",
         "file: 262144 bytes; a configuration must be under 262144 (256 KiB)"},
        {"/type.json", R"({"interfaces": {"eth1": {"type": "ethernet"}, "ath12": {"type": "5G"}}})",
         "interfaces.ath12.type: \"5G\" is not one of ethernet, 2.4g, 5g, 5g_2, 6g"},
        {"/typo.json", R"({"interfaces": {"eth1": {"type": "etherent"}}})",
         "interfaces.eth1.type: \"etherent\" is not one of ethernet, 2.4g, 5g, 5g_2, 6g"},
        {"/notype.json", R"({"interfaces": {"eth1": {"nonrelay": true}}})",
         "interfaces.eth1.type: missing; one of ethernet, 2.4g, 5g, 5g_2, 6g is needed"},
        {"/scalar.json", R"({"interfaces": {"eth1": 5}})",
         "interfaces.eth1: is not an object; an interface needs a type"},
    };
    for (const Case& c : cases) {
        host.set_file(c.path, c.text);
        EXPECT_EQ(c.why, refusal(c.path)) << c.path;
    }
    EXPECT_EQ("file: cannot be opened", refusal("/missing.json"));  // the simulated host sets no errno
    host.set_file("/ok.json", std::string(LYND_CONFIG_MAX_SIZE - 3, ' ') + "{}");
    EXPECT_EQ("", refusal("/ok.json"));
}

TEST_F(ConfigDiagnosticsTest, TheFatalLineIsFollowedByTheFileAndReason) {
    const char* const cases[][3] = {
        {"{ \"enable\": true, \"bridges\": ", "parse config",
         "/etc/lynd.json: line 1, column 30: unexpected end of data"},
        {R"({"interfaces": {"ath12": {"type": "5G"}}})", "invalid interface type",
         "/etc/lynd.json: interfaces.ath12.type: \"5G\" is not one of ethernet, 2.4g, 5g, 5g_2, 6g"},
    };
    for (const auto& c : cases) {
        host.set_file("/etc/lynd.json", c[0]);
        host.clear_console();
        EXPECT_FALSE(config_load(&conf, "/etc/lynd.json"));
        const std::vector<std::string>& lines = host.console_lines();
        ASSERT_EQ(2u, lines.size());
        for (int i = 0; i < 2; i++) {
            EXPECT_EQ(0u, lines[i].find("<LYND_FATAL>[config_load, ")) << lines[i];
            EXPECT_EQ(c[i + 1], lines[i].substr(lines[i].find("] ") + 2));
        }
    }
}

TEST_F(ConfigDiagnosticsTest, OneWarnPerUnknownKeyAndMistypedValue) {
    std::vector<std::string> got = warnings(R"({"enable": true, "enabled": 1, "log_decisions": "on",
        "record": "trace",
        "bridges": {"br-lan": {"loop_avoidance": 1, "path_selection": "no", "hc": true}},
        "param": {"period": "ten", "short_period": "2", "high_threshold": 150, "cpu_threshold": 300,
                  "reserved_ratio_5g": -1, "weaklink_threshold_rssi_7g": 3},
        "interfaces": {"ath12": {"type": "5g", "nonrelay": "yes", "path": true, "priority": 2.5},
                       "eth1": {"type": "ethernet", "compat_group": 258, "class": null}}})");
    const std::vector<std::string> want = {
        "enabled: unknown key, ignored",
        "log_decisions: \"on\" is a string, not true or false; read as true",
        "bridges.br-lan.path_selection: \"no\" is a string, not true or false; read as true",
        "bridges.br-lan.hc: unknown key, ignored",
        "param.period: \"ten\" is a string, not a whole number; read as 0",
        "param.short_period: \"2\" is a string, not a whole number; read as 2",
        "param.high_threshold: 150 is out of range 0..100; using 100",
        "param.cpu_threshold: 300 is out of range 0..255; using 44",
        "param.reserved_ratio_5g: -1 is out of range 0..100; using 0",
        "param.weaklink_threshold_rssi_7g: unknown key, ignored",
        "interfaces.ath12.nonrelay: \"yes\" is a string, not true or false; read as true",
        "interfaces.ath12.priority: 2.5 is a fraction, not a whole number; read as 2",
        "interfaces.eth1.compat_group: 258 is out of range 0..255; using 2",
        "interfaces.eth1.class: null is not a whole number; read as 0",
    };
    EXPECT_EQ(want, got);
    for (const std::string& l : host.console_lines())
        EXPECT_EQ(0u, l.find("<LYND_WARN>[config_load, ")) << l;
    // What the warnings say is what was stored.
    EXPECT_FALSE(conf.interfaces[0].relay);
    EXPECT_EQ(2u, conf.interfaces[1].compat_group);
    EXPECT_EQ(100u, conf.param.high_threshold);
    EXPECT_EQ(0u, conf.param.period);
    EXPECT_TRUE(conf.log_decisions);
}

TEST_F(ConfigDiagnosticsTest, TheDefaultLevelAndTheShippedFileStayQuiet) {
    g_lynd_dgb_lvl = LYND_LVL_ERR;
    host.set_file("/w.json", R"({"enable": true, "nosuch": 1})");
    config_load(&conf, "/w.json");
    EXPECT_TRUE(host.console_lines().empty());
    std::FILE* f = std::fopen(LYND_SOURCE_DIR "/openwrt/files/lynd.json", "rb");
    ASSERT_NE(nullptr, f);
    std::string text(LYND_CONFIG_MAX_SIZE, '\0');
    text.resize(std::fread(&text[0], 1, text.size(), f));
    std::fclose(f);
    EXPECT_EQ(std::vector<std::string>{"br br-lan ps mode set to HC"}, warnings(text));
}

TEST_F(ConfigDiagnosticsTest, LostSectionsAreErrorsAndTheSurplusIsNamed) {
    std::vector<std::string> got = warnings(R"({"bridges": [], "param": 3, "interfaces": {"e": {"type": "ethernet"}}}
        trailing)");
    const std::vector<std::string> want = {
        "line 2, column 9: text after the end of the document, ignored",
        "bridges: is not an object, ignored",
        "param: is not an object; every member takes its default",
    };
    EXPECT_EQ(want, got);
    EXPECT_EQ(1u, host.count_logged("<LYND_ERR>[config_load, "));
}

}  // namespace

// A trace is a name in the daemon's own directory: anything else writes none.
TEST(ConfigRecordTest, ARecordThatIsNotAPlainNameIsAnErrorAndNoTrace) {
    const char* const refused[] = {"/tmp/lynd.trace", "../x", "", ".x", "a b"};
    for (const char* r : refused) {
        lynd_config conf{};
        config_report report{};
        report.sink = [](void*, config_severity, const char*, const char*) {};
        std::string text = std::string(R"({"record": ")") + r + R"(", "record_size": 99999999})";
        ASSERT_EQ(config_parse_result::OK, config_parse(&conf, text.data(), text.size(), &report)) << r;
        EXPECT_EQ(1u, report.errors) << r;
        EXPECT_STREQ("", conf.record) << r;
    }
    lynd_config conf{};
    config_report report{};
    report.sink = [](void*, config_severity, const char*, const char*) {};
    std::string text = R"({"record": "lynd.trace", "record_size": 99999999})";
    ASSERT_EQ(config_parse_result::OK, config_parse(&conf, text.data(), text.size(), &report));
    EXPECT_STREQ("lynd.trace", conf.record);
    EXPECT_EQ(8u * 1024 * 1024, conf.record_size);  // capped, with a warning
    EXPECT_EQ(1u, report.warnings);
}

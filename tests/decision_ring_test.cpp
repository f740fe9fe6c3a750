// The decision ring's optional log line: one per decision, at the default
// level, saying what moved where and why.
#include <syslog.h>

#include "core/decision_ring.h"
#include "core/log.h"
#include "sim_fixture.h"

namespace {

class DecisionRingTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        decision_ring_reset();
    }
    void TearDown() override {
        decision_ring_reset();
        lynd_log_to_syslog(false);
        SimNodeTest::TearDown();
    }
};

TEST_F(DecisionRingTest, EachDecisionIsOneLineWhenAskedFor) {
    decision_record(DECISION_CLIENT_MOVE, "02:00:00:00:00:01", "ath02", "ath12", "path weak");
    EXPECT_TRUE(host.console_lines().empty());  // off by default
    decision_ring_log_lines(true);
    decision_record(DECISION_CLIENT_MOVE, "02:00:00:00:00:01", "ath02", "ath12", "path weak");
    decision_record(DECISION_PREFERRED_PORT, "br-lan", "", "eth2", "start-up");
    decision_record(DECISION_PATH_STATE, "ath12", "NORMAL", "WEAKLINK", "rssi -88 below -85");
    ASSERT_EQ(3u, host.console_lines().size());
    EXPECT_NE(std::string::npos,
              host.console_lines()[0].find("] client 02:00:00:00:00:01 ath02 -> ath12: path weak"));
    EXPECT_EQ(0u, host.console_lines()[0].find("<LYND_DECISION>[decision_record, "));
    EXPECT_NE(std::string::npos, host.console_lines()[1].find("] preferred_port br-lan none -> eth2: start-up"));
    EXPECT_NE(std::string::npos, host.console_lines()[2].find("] path ath12 NORMAL -> WEAKLINK: rssi -88 below -85"));
    EXPECT_EQ(4, decision_count());
}

TEST_F(DecisionRingTest, LinesFollowTheSinkAndLevelZeroSilencesThem) {
    decision_ring_log_lines(true);
    lynd_log_to_syslog(true);
    decision_record(DECISION_BCAST_PORT, "br-lan", "ath02", "ath12", "path chosen");
    ASSERT_EQ(1u, host.syslog_lines().size());
    EXPECT_EQ(0u, host.syslog_lines()[0].find("<" + std::to_string(LOG_NOTICE) + "><LYND_DECISION>["));
    g_lynd_dgb_lvl = 0;
    decision_record(DECISION_BCAST_PORT, "br-lan", "ath12", "ath02", "path chosen");
    EXPECT_EQ(1u, host.syslog_lines().size());
}

}  // namespace

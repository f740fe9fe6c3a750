#include <string>

#include "node/host_stats.h"
#include "core/sort.h"
#include "sim_fixture.h"

namespace {

class HostStatsTest : public SimNodeTest {
protected:
    void SetUp() override {
        SimNodeTest::SetUp();
        lynd_cpu_sampler_reset();
    }
    void proc_stat(uint32_t busy, uint32_t idle) {
        host.set_file("/proc/stat", "cpu  " + std::to_string(busy) + " 0 0 " + std::to_string(idle) +
                                        " 0 0 0 0 0 0\ncpu0 1 2 3 4 5 6 7\n");
    }
};

TEST_F(HostStatsTest, CpuShareComesFromTheLastTwoSamples) {
    proc_stat(100, 900);
    EXPECT_EQ(10u, lynd_calculate_cpu_occupy());  // first call: since boot
    proc_stat(130, 990);                           // busy +30, total +120
    EXPECT_EQ(25u, lynd_calculate_cpu_occupy());
    EXPECT_EQ(0u, lynd_calculate_cpu_occupy());  // nothing moved
    host.set_file("/proc/stat", "garbage");
    (void)lynd_calculate_cpu_occupy();
    proc_stat(130, 990);  // compared with the zero sample: the average since boot
    EXPECT_EQ(11u, lynd_calculate_cpu_occupy());
}

TEST_F(HostStatsTest, EqualTotalsWithDifferentCountersGiveZero) {
    cpu_sample a{10, 0, 0, 90, 0, 0, 0}, b{20, 0, 0, 80, 0, 0, 0};
    EXPECT_EQ(0u, lynd_cpu_percent(a, b));
    EXPECT_EQ(0u, lynd_cpu_percent(a, a));
}

TEST_F(HostStatsTest, OverloadIsStrictlyAboveTheThreshold) {
    lynd_config conf{};
    g_lynd_dgb_lvl = 4;
    proc_stat(100, 0);
    EXPECT_EQ(0, lynd_check_cpu_overload(&conf));
    EXPECT_FALSE(host.logged("cpu ="));  // no threshold: no sample taken
    conf.param.cpu_threshold = 80;
    proc_stat(80, 20);
    EXPECT_EQ(0, lynd_check_cpu_overload(&conf));
    lynd_cpu_sampler_reset();
    proc_stat(81, 19);
    EXPECT_EQ(1, lynd_check_cpu_overload(&conf));
}

TEST_F(HostStatsTest, InterfaceCountersTakeTheFirstMatchingLine) {
    host.set_file("/proc/net/dev",
                  "Inter-|   Receive                            |  Transmit\n"
                  " face |bytes    packets errs drop fifo frame compressed multicast|bytes packets\n"
                  "  veth0: 111 2 0 0 0 0 0 0 333 4 0 0 0 0 0 0\n"
                  "  eth0: 5000000000 6 0 0 0 0 0 0 7000 8 0 0 0 0 0 0\n");
    if_stat s{};
    ASSERT_EQ(1, lynd_get_if_stat("eth0", &s));
    EXPECT_EQ(111u, s.rx_bytes);  // "eth0:" is the tail of "veth0:"
    EXPECT_EQ(4u, s.tx_packets);
    EXPECT_EQ(0, lynd_get_if_stat("ath9", &s));
    EXPECT_EQ(0, lynd_get_if_stat(nullptr, &s));
    std::string big = "  eth1: 5000000000 6 0 0 0 0 0 0 7000 8\n";
    ASSERT_TRUE(lynd_parse_net_dev(big.data(), big.size(), "eth1", &s));
    EXPECT_EQ(5000000000u, s.rx_bytes);
    EXPECT_EQ(8u, s.tx_packets);
}

// A node with hundreds of VLAN and WDS interfaces: the ones read are found,
// and one past what can be read is said to be so, not silently missing.
TEST_F(HostStatsTest, ALongInterfaceListIsReadOrSaidToBeCut) {
    g_lynd_dgb_lvl = LYND_LVL_WARN;
    std::string text;
    for (int i = 0; i < 1000; i++)
        text += "  ath1" + std::to_string(i) + ": 100 1 0 0 0 0 0 0 " + std::to_string(i) + " 2 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n";
    host.set_file("/proc/net/dev", text);
    if_stat s{};
    ASSERT_EQ(1, lynd_get_if_stat("ath1400", &s));
    EXPECT_EQ(400u, s.tx_bytes);
    EXPECT_TRUE(host.console_lines().empty());
    EXPECT_EQ(0, lynd_get_if_stat("ath1999", &s));
    EXPECT_TRUE(host.logged("<LYND_WARN>[lynd_get_if_stat, "));
    EXPECT_TRUE(host.logged("] /proc/net/dev is cut at 65536 bytes, ath1999 is not in what was read"));
}

TEST_F(HostStatsTest, SortCountsLeadingNonZeroValues) {
    uint16_t v[] = {0, 5, 0, 9};
    EXPECT_EQ(2, lynd_sort_array(v, 4));
    EXPECT_EQ((std::vector<uint16_t>{9, 5, 0, 0}), std::vector<uint16_t>(v, v + 4));
    EXPECT_EQ(0, lynd_sort_array(nullptr, 4));
    EXPECT_EQ(0, lynd_sort_array(v, 0));
    std::vector<uint16_t> many(300, 1);
    EXPECT_EQ(44, lynd_sort_array(many.data(), 300));  // the count wraps at 256
}

}  // namespace

// Traces as a customer might send them, each with one hostile line: the desk
// replays them to an end, in bounded memory, never trusting a recorded
// result as a length, and says what was wrong.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "file_text.h"
#include "platform/seams.h"
#include "replay_child.h"
#include "sim/desk/replay_host.h"
#include "sim/desk/replay_krel.h"
#include "sim/desk/replay_run.h"
#include "sim/scenario/scenario.h"
#include "sim/sim_node.h"
#include "temp_dir.h"
#include "trace/host_requests.h"
#include "trace/trace_recorder.h"
#include "wlan/qca/qca_ioctl.h"
#include "wlan/qca/qca_layouts.h"

namespace {

const char kHeader[] =
    "{\"t\":0,\"k\":\"header\",\"lynd_trace\":2,\"daemon\":\"1\",\"host_order\":\"little\",\"word_bits\":64,"
    "\"start\":\"boot\",\"args\":[\"lynd\"],\"config\":\"{}\"}\n";

// A request as the daemon asks it, with a recorded answer after its members.
std::string answered(const char* kind, const std::function<void(lynd::TraceLine&)>& ask, const std::string& answer) {
    static lynd::TraceLine l;
    l.begin(0, kind);
    ask(l);
    l.end();
    return std::string(l.data(), l.size() - 2) + answer + "}\n";
}

std::string zero_runs(const char* run, int n) {
    std::string s;
    for (int i = 0; i < n; i++)
        s += run;
    return s;
}

const char* const kApstats[] = {"apstats", "-v", "-i", "ath12", nullptr};

// One call of the host or the bridge library against a recorded answer
// that claims more than it holds: the length the daemon is given.
struct LengthCase {
    const char* what;
    std::string records;  // after the header
    size_t room;          // the daemon's buffer
    std::function<long(lynd::ReplayTape&)> call;
};

std::vector<LengthCase> length_cases() {
    static char buf[64];
    static uint8_t table[64];
    return {
        {"a tool's output of 100000 bytes, 19 recorded, into 16",
         answered("run", [](lynd::TraceLine& l) { lynd::req_run(l, kApstats, 16); },
                  ",\"rc\":100000,\"out\":\"0123456789abcdefXYZ\""),
         16,
         [](lynd::ReplayTape& t) { return static_cast<long>(lynd::ReplayHost(&t).run_capture(kApstats, buf, 16)); }},
        {"a file read of 100000 bytes, 10 recorded",
         answered("read", [](lynd::TraceLine& l) { lynd::req_read(l, "/proc/stat", 64); },
                  ",\"rc\":100000,\"data\":\"cpu 1 2 3\\n\""),
         10, [](lynd::ReplayTape& t) { return lynd::ReplayHost(&t).read_file("/proc/stat", buf, 64); }},
        {"a datagram of 100000 bytes, 4 recorded",
         answered("nl_recv",
                  [](lynd::TraceLine& l) {
                      l.num("fd", 3);
                      l.num("size", 64);
                  },
                  ",\"rc\":100000,\"data\":\"0a0b0c0d\""),
         4, [](lynd::ReplayTape& t) {
             uint32_t sender = 0;
             return lynd::ReplayHost(&t).nl_recv(3, buf, 64, &sender);
         }},
        {"a station table of 60000 bytes, 8 recorded",
         answered("ioctl",
                  [](lynd::TraceLine& l) {
                      l.num("fd", 5);
                      l.num("req", static_cast<int64_t>(QCA_IOCTL_STA_TABLE));
                      l.str("if", "ath1");
                      l.num("len", 64);
                  },
                  ",\"rc\":0,\"got\":60000,\"data\":\"0102030405060708\""),
         8,
         [](lynd::ReplayTape& t) {
             iw_request req{};
             std::strcpy(req.name, "ath1");
             req.u.data.pointer = buf;
             req.u.data.length = 64;
             lynd::Seams s = lynd::installed_seams();
             s.driver = &qca_driver_requests;
             const lynd::Seams before = lynd::install_seams(s);
             (void)lynd::ReplayHost(&t).dev_ioctl(5, QCA_IOCTL_STA_TABLE, &req);
             (void)lynd::install_seams(before);
             return static_cast<long>(req.u.data.length);
         }},
        {"an fdb table of 100000 entries, 2 recorded",
         "{\"t\":0,\"k\":\"k_alloc\",\"size\":40,\"br\":\"br-lan\",\"rc\":1}\n"
         "{\"t\":0,\"k\":\"k_table\",\"br\":\"br-lan\",\"type\":4,\"count\":2,\"flags\":0,\"rc\":0,\"got\":100000,"
         "\"data\":\"z40.\"}\n",
         2,
         [](lynd::ReplayTape& t) {
             lynd::ReplayKrel krel(&t);
             void* b = krel.bridgeAllocTableBuf(40, "br-lan");
             int count = 2;
             (void)krel.bridgeTableAction("br-lan", 4, &count, b, 0);
             krel.bridgeFreeTableBuf(b);
             (void)table;
             return static_cast<long>(count);
         }},
    };
}

TEST(ReplayHostileTest, ARecordedResultIsNeverTakenAsALength) {
    for (const auto& c : length_cases()) {
        lynd::TraceStream in(lynd::trace_text(kHeader + c.records), true);
        ASSERT_TRUE(in.open()) << c.what << ": " << in.error();
        lynd::ReplayTape tape(&in);
        EXPECT_EQ(static_cast<long>(c.room), c.call(tape)) << c.what;
        EXPECT_FALSE(tape.divergence().found) << c.what << ": " << tape.divergence().actual;
    }
}

class ReplayHostileTraceTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        TempDir tmp;
        std::string path = tmp.path + "/trace", text, error;
        text = slurp(std::string(LYND_SOURCE_DIR) + "/scenarios/ps_weak_5g.json");
        lynd::Scenario sc;
        ASSERT_TRUE(lynd::scenario_parse(text.data(), text.size(), &sc, &error)) << error;
        lynd::trace_request(path.c_str(), size_t{1} << 30);
        {
            lynd::SimNode node(sc);
            (void)node.run("lynd", {});
        }
        lynd::trace_request(nullptr, 0);
        recorded_ = slurp(path);
    }
    static std::string recorded_;
};

std::string ReplayHostileTraceTest::recorded_;

// The first line holding mark, replaced whole by line (a newline added).
std::string with_line(const std::string& text, const std::string& mark, const std::string& line) {
    size_t at = text.find(mark);
    if (at == std::string::npos)
        return "";
    size_t begin = text.rfind('\n', at) + 1;
    size_t end = text.find('\n', at);
    return text.substr(0, begin) + line + text.substr(end);
}

// The lines up to ms, then a stop ages ahead.
std::string cut_with_far_stop(const std::string& text, int64_t ms, int64_t stop) {
    std::string out;
    for (size_t pos = 0; pos < text.size();) {
        size_t end = text.find('\n', pos);
        std::string line = text.substr(pos, end - pos + 1);
        if (pos > 0 && std::strtoll(line.c_str() + 5, nullptr, 10) > ms)
            break;
        out += line;
        pos = end + 1;
    }
    return out + "{\"t\":" + std::to_string(stop) + ",\"k\":\"stop\"}\n";
}

struct HostileTrace {
    const char* what;
    std::function<std::string(const std::string&)> edit;
    bool what_if;
    int status;        // the replay's exit status
    const char* says;  // in its report
};

// A day of the daemon's own memory is far below; a trace that makes it hold
// a line of zero runs decoded takes gigabytes.
constexpr long kRssLimitKb = 640 * 1024;

TEST_F(ReplayHostileTraceTest, EachHostileLineEndsTheReplayInBoundedMemoryAndIsNamed) {
    const std::string runs = "{\"t\":1000,\"k\":\"nl_recv\",\"fd\":100,\"size\":16384,\"rc\":72,\"data\":\"";
    const std::vector<HostileTrace> cases = {
        {"a tool's output claimed 100000 bytes long",
         [](const std::string& t) {
             std::string s = t;
             size_t at = s.find("\"rc\":178,", s.find("\"k\":\"run\""));
             return at == std::string::npos ? "" : s.replace(at, 9, "\"rc\":100000,");
         },
         false, 0, "identical: "},
        {"a 429-byte line of zero runs of 16 MiB each",
         [&](const std::string& t) { return with_line(t, "\"k\":\"nl_recv\"", runs + zero_runs("z16777216.", 40) + "\"}"); },
         false, 1, "DIVERGED"},
        {"a line of zero runs of 1 MiB each, the most a field holds",
         [&](const std::string& t) { return with_line(t, "\"k\":\"nl_recv\"", runs + zero_runs("z1048576.", 40) + "\"}"); },
         false, 1, "DIVERGED"},
        {"a time near INT64_MAX",
         [](const std::string& t) { return with_line(t, "\"k\":\"stop\"", "{\"t\":9223372036854775000,\"k\":\"stop\"}"); },
         false, 2, "out of range"},
        {"a time near INT64_MAX, in a what-if",
         [](const std::string& t) { return with_line(t, "\"k\":\"stop\"", "{\"t\":9223372036854775000,\"k\":\"stop\"}"); },
         true, 2, "out of range"},
        {"a monotonic clock near INT64_MAX",
         [](const std::string& t) {
             return with_line(t, "\"k\":\"mono\"", "{\"t\":0,\"k\":\"mono\",\"s\":9223372036854775,\"ns\":0}");
         },
         false, 2, "a monotonic clock reading out of range"},
        {"a line longer than any the recorder writes",
         [](const std::string& t) {
             return with_line(t, "\"k\":\"stop\"", "{\"t\":260000,\"k\":\"stop\",\"pad\":\"" + std::string(600000, 'x') + "\"}");
         },
         false, 2, "longer than 540672 bytes"},
        {"a what-if whose trace ends 139 years on",
         [](const std::string& t) { return cut_with_far_stop(t, 20000, lynd::TRACE_TIME_MAX); }, true, 0,
         "the what-if run ended at"},
    };
    for (const auto& c : cases) {
        auto began = std::chrono::steady_clock::now();
        std::string text = c.edit(recorded_);
        ASSERT_FALSE(text.empty()) << c.what;
        ReplayChild r = replay_in_child(
            [&] {
                lynd::TraceSource s = lynd::trace_text(text);
                return c.what_if ? lynd::what_if_trace(s, "", {"-l", "4"}) : lynd::replay_trace(s, {});
            },
            60);
        EXPECT_TRUE(r.exited) << c.what << ": ended by signal " << -r.status;
        EXPECT_EQ(c.status, r.status) << c.what << ": " << r.report;
        EXPECT_NE(std::string::npos, r.report.find(c.says)) << c.what << ": " << r.report;
        EXPECT_LT(r.max_rss_kb, kRssLimitKb) << c.what;
        std::printf("%s: %ld ms, max RSS %ld KiB\n", c.what,
                    static_cast<long>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                          std::chrono::steady_clock::now() - began)
                                          .count()),
                    r.max_rss_kb);
    }
}

}  // namespace

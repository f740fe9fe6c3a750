#include "sim/desk/trace_chain.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// One part of a recording begun at began ms, with records at the times given.
std::string part_text(int part, int64_t began, const std::vector<int>& times, const char* config = "{}") {
    std::string text = "{\"t\":" + std::to_string(times.empty() ? 0 : times[0]) +
                       ",\"k\":\"header\",\"lynd_trace\":2,\"daemon\":\"1.1.0\",\"host_order\":\"little\","
                       "\"word_bits\":64,\"start\":\"" +
                       (part == 1 ? "boot" : "rotated") + "\",\"part\":" + std::to_string(part) +
                       ",\"began\":" + std::to_string(began) + ",\"args\":[\"lynd\"],\"config\":\"" + config + "\"}\n";
    for (int t : times)
        text += "{\"t\":" + std::to_string(t) + ",\"k\":\"timer\",\"id\":0}\n";
    return text;
}

lynd::Trace parsed(const std::string& text) {
    lynd::Trace t;
    std::string error;
    EXPECT_TRUE(lynd::trace_parse(text.data(), text.size(), &t, &error)) << error;
    return t;
}

std::string chain_error(const std::vector<std::string>& texts) {
    std::vector<lynd::Trace> parts;
    std::vector<std::string> names;
    for (const auto& t : texts) {
        parts.push_back(parsed(t));
        names.push_back("f" + std::to_string(names.size() + 1));
    }
    lynd::Trace out;
    std::string error;
    EXPECT_FALSE(lynd::trace_chain(parts, names, &out, &error));
    return error;
}

TEST(TraceChainTest, ConsecutivePartsJoinIntoOneTraceThatNamesEachRecordsFile) {
    std::vector<lynd::Trace> parts{parsed(part_text(1, 5, {5, 7})), parsed(part_text(2, 5, {7, 9})),
                                   parsed(part_text(3, 5, {12}))};
    lynd::Trace out;
    std::string error;
    ASSERT_TRUE(lynd::trace_chain(parts, {"a.1", "a", "b"}, &out, &error)) << error;
    EXPECT_EQ(1, out.header.part);
    EXPECT_EQ("boot", out.header.start);
    ASSERT_EQ(5u, out.records.size());
    EXPECT_EQ(9, out.records[3].t);
    EXPECT_EQ(2, out.records[3].part);
    EXPECT_EQ(3, out.records[3].line);
    EXPECT_EQ(3, out.records[4].part);
}

TEST(TraceChainTest, APartAfterTheFirstAloneSaysWhatIsMissingAndHowToKeepIt) {
    std::string e = chain_error({part_text(3, 5, {20})});
    EXPECT_EQ(0u, e.find("f1: part 3 of a recording: the daemon's state at this file's start is not in the trace"))
        << e;
    EXPECT_NE(std::string::npos, e.find("after parts 1 to 2 of the same recording")) << e;
    EXPECT_NE(std::string::npos, e.find("larger \"record_size\"")) << e;
    EXPECT_NE(std::string::npos, chain_error({part_text(2, 5, {20})}).find("after part 1 of")) << e;
}

TEST(TraceChainTest, PartsOutOfSequenceOrOfAnotherRecordingAreRefused) {
    EXPECT_EQ("the parts are out of sequence: f2 is part 1 and f1 part 2; give them in order, part 1 first\n",
              chain_error({part_text(2, 5, {9}), part_text(1, 5, {5})}));
    EXPECT_EQ("f2 does not go on from f1: part 3 after part 1; give the parts in order, with none left out\n",
              chain_error({part_text(1, 5, {5}), part_text(3, 5, {9})}));
    // The same configuration recorded twice: the first part's time tells them apart.
    EXPECT_NE(std::string::npos,
              chain_error({part_text(1, 5, {5}), part_text(2, 6000, {9})}).find("it is of another recording"));
    EXPECT_NE(std::string::npos,
              chain_error({part_text(1, 5, {5}), part_text(2, 5, {9}, "{ }")}).find("it is of another recording"));
    EXPECT_NE(std::string::npos, chain_error({part_text(1, 5, {5, 30}), part_text(2, 5, {20})})
                                     .find("its first record (20 ms) is older than the last one before (30 ms)"));
}

TEST(TraceChainTest, AHeaderWithoutAPartIsTheFirstAndAPartBelowOneIsRefused) {
    std::string old = part_text(1, 0, {});
    old.replace(old.find(",\"part\":1"), 9, "");
    EXPECT_EQ(1, parsed(old).header.part);
    std::string zero = part_text(1, 0, {});
    zero.replace(zero.find("\"part\":1"), 8, "\"part\":0");
    lynd::Trace t;
    std::string error;
    EXPECT_FALSE(lynd::trace_parse(zero.data(), zero.size(), &t, &error));
    EXPECT_EQ("line 1: part 0 (parts count from 1)", error);
}

}  // namespace

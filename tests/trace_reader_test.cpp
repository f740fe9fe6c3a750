#include "sim/desk/trace_reader.h"

#include <gtest/gtest.h>

#include <string>

namespace {

const std::string kHeader =
    "{\"t\":0,\"k\":\"header\",\"lynd_trace\":2,\"daemon\":\"1.1.0\",\"host_order\":\"little\",\"word_bits\":64,\"start\":\"boot\","
    "\"args\":[\"lynd\",\"-l\",\"4\"],\"config\":\"{}\"}\n";

std::string parse_error(const std::string& text) {
    lynd::Trace t;
    std::string error;
    EXPECT_FALSE(lynd::trace_parse(text.data(), text.size(), &t, &error));
    return error;
}

TEST(TraceReaderTest, RecordsComeBackWithTheirFieldsAndTheHeaderApart) {
    std::string text = kHeader + "{\"t\":10,\"k\":\"nl_recv\",\"fd\":3,\"size\":64,\"rc\":3,\"data\":\"00ff10\"}\n" +
                       "{\"t\":10,\"k\":\"read\",\"path\":\"/proc/stat\",\"rc\":2,\"data_x\":\"80ff\"}\n";
    lynd::Trace t;
    std::string error;
    ASSERT_TRUE(lynd::trace_parse(text.data(), text.size(), &t, &error)) << error;
    EXPECT_EQ((std::vector<std::string>{"lynd", "-l", "4"}), t.header.args);
    EXPECT_EQ("{}", t.header.config);
    ASSERT_EQ(2u, t.records.size());
    EXPECT_EQ(2, t.records[0].line);
    EXPECT_EQ(std::string("\x00\xff\x10", 3), t.records[0].bytes("data"));
    EXPECT_EQ(std::string("\x80\xff", 2), t.records[1].text("data"));
    EXPECT_EQ(3, t.records[0].num("fd"));
}

TEST(TraceReaderTest, EachKindOfBadTraceNamesItsLine) {
    EXPECT_EQ("line 2: truncated record (no end of line)", parse_error(kHeader + "{\"t\":5,\"k\":\"timer\""));
    EXPECT_EQ("line 2: unknown record type \"teleport\"", parse_error(kHeader + "{\"t\":5,\"k\":\"teleport\"}\n"));
    std::string v1 = kHeader;
    v1.replace(v1.find("\"lynd_trace\":2"), 14, "\"lynd_trace\":1");
    EXPECT_EQ("line 1: trace format version 1, this build reads version 2", parse_error(v1));
    EXPECT_EQ("line 3: record out of order (at 4 ms after 9 ms)",
              parse_error(kHeader + "{\"t\":9,\"k\":\"timer\",\"id\":0}\n{\"t\":4,\"k\":\"timer\",\"id\":1}\n"));
    EXPECT_EQ("line 2: not a JSON object", parse_error(kHeader + "{\"t\":5,\"k\":\"timer\"} trailing\n"));
    EXPECT_EQ("line 2: a record needs a time \"t\" and a type \"k\"", parse_error(kHeader + "{\"k\":\"timer\"}\n"));
    EXPECT_EQ("line 1: not a lynd trace (no header)", parse_error("{\"t\":5,\"k\":\"timer\"}\n"));
    EXPECT_EQ("line 1: empty trace", parse_error(""));
}

TEST(TraceReaderTest, HexDecodingExpandsZeroRunsAndRefusesDamage) {
    std::string out;
    EXPECT_TRUE(lynd::trace_unhex("0aFfz5.01", 9, &out));
    EXPECT_EQ(std::string("\x0a\xff\0\0\0\0\0\x01", 8), out);
    EXPECT_FALSE(lynd::trace_unhex("0a1", 3, &out));
    EXPECT_FALSE(lynd::trace_unhex("0g", 2, &out));
    EXPECT_FALSE(lynd::trace_unhex("z5", 2, &out));
    EXPECT_FALSE(lynd::trace_unhex("z.", 2, &out));
    EXPECT_FALSE(lynd::trace_unhex("z99999999999.", 13, &out));
}

}  // namespace

#include "sim/desk/trace_reader_stream.h"

#include <gtest/gtest.h>

#include <cstring>

#include <fstream>
#include <string>

#include "temp_dir.h"

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

TEST(TraceReaderTest, WrittenBytesReadBackWholeOrCutToTheRoom) {
    const uint8_t bytes[] = {0, 0, 0, 0, 0, 7, 0, 0, 0x80, 0, 0, 0, 0};
    char text[64];
    size_t len = lynd::trace_hex(text, sizeof text, bytes, sizeof bytes);
    ASSERT_LE(len, sizeof text);
    EXPECT_EQ("z5.07000080z4.", std::string(text, len));
    uint8_t back[sizeof bytes] = {};
    size_t n = 0;
    ASSERT_TRUE(lynd::trace_unhex(text, len, back, sizeof back, &n));
    EXPECT_EQ(sizeof bytes, n);
    EXPECT_EQ(0, std::memcmp(bytes, back, sizeof bytes));
    uint8_t cut[6] = {1, 1, 1, 1, 1, 1};
    ASSERT_TRUE(lynd::trace_unhex(text, len, cut, sizeof cut, &n));
    EXPECT_EQ(sizeof bytes, n);  // the count is the text's, the bytes the room's
    EXPECT_EQ(7, cut[5]);
}

// Lines a hostile trace may hold: each refused with its line named, before
// anything is decoded or replayed.
TEST(TraceReaderTest, HostileLinesAreRefusedByTheirLine) {
    struct Case {
        std::string line;
        const char* error;
    };
    const Case cases[] = {
        {"{\"t\":9223372036854775000,\"k\":\"stop\"}",
         "line 2: time 9223372036854775000 ms out of range (0 to 4398046511104)"},
        {"{\"t\":99999999999999999999,\"k\":\"stop\"}",
         "line 2: time 9223372036854775807 ms out of range (0 to 4398046511104)"},
        {"{\"t\":-5,\"k\":\"timer\",\"id\":0}", "line 2: time -5 ms out of range (0 to 4398046511104)"},
        {"{\"t\":4398046511105,\"k\":\"timer\",\"id\":0}", "line 2: time 4398046511105 ms out of range (0 to 4398046511104)"},
        {"{\"t\":5,\"k\":\"log\",\"line\":\"" + std::string(600000, 'x') + "\"}", "line 2: longer than 540672 bytes"},
        {"{\"t\":5,\"k\":\"header\",\"lynd_trace\":2,\"args\":[]}", "line 2: a second header"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.error, parse_error(kHeader + c.line + "\n")) << c.line.substr(0, 60);
}

// A field decodes to no more than the room it fills, however many zeros it
// claims: a 429-byte line of 16 MiB runs once took 1.25 GB.
TEST(TraceReaderTest, AFieldDecodesToNoMoreThanItsRoom) {
    std::string runs;
    for (int i = 0; i < 40; i++)
        runs += "z1048576.";
    std::string text = kHeader + "{\"t\":5,\"k\":\"nl_recv\",\"fd\":3,\"size\":64,\"rc\":72,\"data\":\"" + runs +
                       "\",\"out\":\"abcdef\"}\n";
    lynd::Trace t;
    std::string error;
    ASSERT_TRUE(lynd::trace_parse(text.data(), text.size(), &t, &error)) << error;
    EXPECT_EQ(std::string(64, '\0'), t.records[0].bytes("data", 64));
    EXPECT_EQ(lynd::TRACE_FIELD_MAX, t.records[0].bytes("data").size());
    EXPECT_EQ("abc", t.records[0].text("out", 3));
    std::string out;
    EXPECT_FALSE(lynd::trace_unhex("z16777216.", 10, &out));
    EXPECT_TRUE(out.empty());
    EXPECT_TRUE(lynd::trace_unhex("0102z1000.03", 12, &out, 3));
    EXPECT_EQ(std::string("\x01\x02\0", 3), out);
}

// A file is read in pieces: lines across their edges come back whole, a
// last line without its end is named, and parts chain as they stream.
TEST(TraceReaderTest, AFileStreamsLineByLineAcrossItsPieces) {
    TempDir tmp;
    std::string text = kHeader;
    for (int i = 0; i < 40; i++)
        text += "{\"t\":" + std::to_string(i) + ",\"k\":\"log\",\"line\":\"" + std::string(100000 + i, 'a') + "\"}\n";
    std::ofstream(tmp.path + "/a", std::ios::binary) << text;
    std::ofstream(tmp.path + "/cut", std::ios::binary) << text << "{\"t\":50,\"k\":\"stop\"}";
    lynd::TraceStream in(lynd::trace_files({tmp.path + "/a"}), true);
    ASSERT_TRUE(in.open()) << in.error();
    lynd::TraceRecord r;
    size_t n = 0;
    while (in.next(&r)) {
        EXPECT_EQ(100000u + n, r.text("line").size());
        EXPECT_EQ(static_cast<int>(n) + 2, r.line);
        n++;
    }
    EXPECT_EQ("", in.error());
    EXPECT_EQ(40u, n);
    lynd::TraceStream cut(lynd::trace_files({tmp.path + "/cut"}), true);
    ASSERT_TRUE(cut.open());
    while (cut.next(&r)) {
    }
    EXPECT_EQ(tmp.path + "/cut: line 42: truncated record (no end of line)\n", cut.error());
    lynd::TraceStream none(lynd::trace_files({tmp.path + "/none"}), true);
    EXPECT_FALSE(none.open());
    EXPECT_EQ(tmp.path + "/none: cannot read the file\n", none.error());
}

}  // namespace

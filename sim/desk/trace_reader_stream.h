// A trace read as a stream, one record at a time, so that a week's recording
// replays in the memory of one line: the parts of a recording (files, or
// texts in memory) chained, every line checked as it is read.
#pragma once
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "sim/desk/trace_reader.h"

namespace lynd {

// One file of a recording: read from path, or the text given.
struct TracePart {
    std::string name;  // for errors; "" for a lone text
    std::shared_ptr<const std::string> text;
};
// The parts of one recording, part 1 first.
using TraceSource = std::vector<TracePart>;
TraceSource trace_files(const std::vector<std::string>& paths);
TraceSource trace_text(std::string text);

// The lines of one part, each at most TRACE_READ_LINE_MAX bytes.
class TraceLines {
public:
    enum Result { LINE, END, TOO_LONG, TRUNCATED, READ_ERROR };
    explicit TraceLines(const TracePart& part);
    ~TraceLines();
    TraceLines(const TraceLines&) = delete;
    TraceLines& operator=(const TraceLines&) = delete;
    bool opened() const { return text_ != nullptr || file_ != nullptr; }
    // The next line, without its newline: valid until the next call.
    Result next(const char** p, size_t* n);

private:
    bool fill();

    std::shared_ptr<const std::string> text_;
    std::FILE* file_ = nullptr;
    std::vector<char> buf_;
    size_t begin_ = 0;
    size_t end_ = 0;
    bool eof_ = false;
};

class TraceStream {
public:
    // parse: every line parsed and checked whole as it is read; without, a
    // line is parsed when first used (a trace already read through once).
    TraceStream(TraceSource source, bool parse);
    // Opens every part and reads its header; false with error(). chain:
    // the parts must be a recording's from its start (see trace_chain).
    bool open(bool chain = true);
    const TraceHeader& header() const { return headers_.empty() ? none_ : headers_[0]; }
    // The first part's header line as a record.
    const TraceRecord& header_record() const { return header_record_; }
    // The next record; false at the end or at a fault (then error() says it).
    bool next(TraceRecord* r);
    const std::string& error() const { return error_; }
    size_t records() const { return records_; }

private:
    bool fail(const std::string& why);
    bool next_line(TraceRecord* r);

    TraceSource source_;
    std::vector<std::string> names_;
    bool parse_;
    std::vector<std::unique_ptr<TraceLines>> lines_;
    std::vector<TraceHeader> headers_;
    TraceHeader none_;
    TraceRecord header_record_;
    size_t part_ = 0;
    int line_ = 1;
    int64_t last_t_ = 0;
    bool started_ = false;  // a record of the current part was read
    size_t records_ = 0;
    std::string error_;
};

// A whole file's text in memory, any part (tests, fuzzing); a replay streams.
bool trace_parse(const char* text, size_t len, Trace* out, std::string* error);

}  // namespace lynd

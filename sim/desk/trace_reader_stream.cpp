#include "sim/desk/trace_reader_stream.h"

#include <cstring>

#include "sim/desk/trace_chain.h"

namespace lynd {

namespace {

// Read in pieces this large; a line may straddle two.
constexpr size_t kChunk = 1024 * 1024;

}  // namespace

TraceSource trace_files(const std::vector<std::string>& paths) {
    TraceSource s;
    for (const auto& p : paths)
        s.push_back(TracePart{p, nullptr});
    return s;
}

TraceSource trace_text(std::string text) {
    return TraceSource{TracePart{"", std::make_shared<const std::string>(std::move(text))}};
}

TraceLines::TraceLines(const TracePart& part) : text_(part.text) {
    if (text_ != nullptr)
        return;
    file_ = std::fopen(part.name.c_str(), "rb");
    if (file_ != nullptr)
        buf_.resize(kChunk + TRACE_READ_LINE_MAX + 1);
}

TraceLines::~TraceLines() {
    if (file_ != nullptr)
        std::fclose(file_);
}

bool TraceLines::fill() {
    if (begin_ > 0) {
        std::memmove(buf_.data(), buf_.data() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    size_t got = std::fread(buf_.data() + end_, 1, buf_.size() - end_, file_);
    end_ += got;
    if (got == 0)
        eof_ = true;
    return std::ferror(file_) == 0;
}

TraceLines::Result TraceLines::next(const char** p, size_t* n) {
    const char* base = text_ != nullptr ? text_->data() : buf_.data();
    size_t end = text_ != nullptr ? text_->size() : end_;
    size_t scanned = 0;
    for (;;) {
        const void* nl = std::memchr(base + begin_ + scanned, '\n', end - begin_ - scanned);
        size_t len = nl != nullptr ? static_cast<size_t>(static_cast<const char*>(nl) - base) - begin_ : end - begin_;
        if (len > TRACE_READ_LINE_MAX)
            return TOO_LONG;
        if (nl != nullptr) {
            *p = base + begin_;
            *n = len;
            begin_ += len + 1;
            return LINE;
        }
        if (text_ != nullptr || eof_)
            return len == 0 ? END : TRUNCATED;
        scanned = len;
        if (!fill())
            return READ_ERROR;
        base = buf_.data();
        end = end_;
    }
}

TraceStream::TraceStream(TraceSource source, bool parse) : source_(std::move(source)), parse_(parse) {
    // A lone text has no name; parts in memory are numbered.
    for (const auto& p : source_)
        if (!p.name.empty())
            names_.push_back(p.name);
}

bool TraceStream::fail(const std::string& why) {
    const std::string& name = part_ < source_.size() ? source_[part_].name : "";
    error_ = name.empty() ? why : name + ": " + why + "\n";
    return false;
}

bool TraceStream::open(bool chain) {
    for (part_ = 0; part_ < source_.size(); part_++) {
        lines_.push_back(std::make_unique<TraceLines>(source_[part_]));
        if (!lines_.back()->opened())
            return fail("cannot read the file");
        TraceRecord r;
        if (!next_line(&r))
            return fail(error_.empty() ? trace_line_error(1, "empty trace") : error_);
        TraceHeader h;
        if (!trace_read_header(r, &h, &error_))
            return fail(error_);
        headers_.push_back(h);
        if (part_ == 0)
            header_record_ = r;
    }
    part_ = 0;
    line_ = 1;
    if (!chain)
        return true;
    error_ = trace_chain_headers(headers_, names_);
    if (!error_.empty() && names_.empty() && source_.size() == 1)
        error_ = trace_chain_missing_start("the trace", headers_[0].part);
    return error_.empty();
}

// The next line of the current part as a record; false at its end (error_
// empty) or at a fault.
bool TraceStream::next_line(TraceRecord* r) {
    const char* p = nullptr;
    size_t n = 0;
    TraceLines::Result res = lines_[part_]->next(&p, &n);
    int line = headers_.size() > part_ ? ++line_ : 1;
    switch (res) {
    case TraceLines::LINE:
        return trace_read_record(p, n, line, parse_ || line == 1, r, &error_);
    case TraceLines::END:
        return false;
    case TraceLines::TOO_LONG:
        error_ = trace_line_error(line, "longer than " + std::to_string(TRACE_READ_LINE_MAX) + " bytes");
        return false;
    case TraceLines::TRUNCATED:
        error_ = trace_line_error(line, "truncated record (no end of line)");
        return false;
    default:
        error_ = "cannot read the file";
        return false;
    }
}

bool TraceStream::next(TraceRecord* r) {
    while (error_.empty() && part_ < lines_.size()) {
        if (!next_line(r)) {
            if (!error_.empty())
                return fail(error_);
            part_++;
            line_ = 1;
            started_ = false;
            continue;
        }
        if (r->kind == "header")
            return fail(trace_line_error(line_, "a second header"));
        if (started_ && r->t < last_t_)
            return fail(trace_line_error(line_, "record out of order (at " + std::to_string(r->t) + " ms after " +
                                                    std::to_string(last_t_) + " ms)"));
        if (!started_ && records_ > 0) {
            error_ = trace_chain_junction(names_, part_, last_t_, r->t);
            if (!error_.empty())
                return false;
        }
        started_ = true;
        last_t_ = r->t;
        r->part = headers_[part_].part;
        records_++;
        return true;
    }
    return false;
}

bool trace_parse(const char* text, size_t len, Trace* out, std::string* error) {
    *out = Trace{};
    TraceStream in(trace_text(std::string(text, len)), true);
    if (!in.open(false)) {
        *error = in.error();
        return false;
    }
    out->header = in.header();
    TraceRecord r;
    while (in.next(&r)) {
        r.release();
        out->records.push_back(r);
    }
    *error = in.error();
    return error->empty();
}

}  // namespace lynd

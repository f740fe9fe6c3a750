#include "trace/trace_recorder.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include <unistd.h>

#include "bridge/steering_gate.h"
#include "config/config.h"
#include "core/log.h"
#include "core/trace_name.h"
#include "platform/seams.h"
#include "trace/rec_bus.h"
#include "trace/rec_host.h"
#include "trace/rec_krel.h"
#include "trace/rec_loop.h"
#include "trace/rec_uci.h"
#include "trace/trace_buffers.h"
#include "trace/trace_file.h"
#include "trace/trace_kinds.h"
#include "trace/trace_place.h"
#include "trace/trace_sink.h"

namespace lynd {

// A configuration file of the largest size the loader takes fits one record.
static_assert(TRACE_LINE_MAX >= 2 * (LYND_CONFIG_MAX_SIZE + 1) + 4096, "a configuration read must fit a record");

namespace {

// FAILED: the file failed; records are dropped until the trace is ended
// from the loop, outside whatever seam call noticed it.
enum class Mode { OFF, PENDING, FILE, FAILED };

struct Recorder {
    RecLoop loop;
    RecHost host;
    RecUci uci;
    RecKrel krel;
    RecBus bus;
    TraceBuffers* buf = nullptr;
    TraceLine none{0};  // takes the records of decorators left in place
    TraceLine* line = &none;
    Mode mode = Mode::OFF;
    bool installed = false;
    bool forbid = false;
    bool start_lacking = false;  // the start's buffers could not be had
    int holds = 0;               // bus calls in flight through the recorder
    char dir[TRACE_PATH_MAX] = "/tmp/lynd";
    char request[TRACE_PATH_MAX] = {};  // a desk path
    size_t request_size = 0;
    char call[TRACE_NAME_MAX + 1] = {};  // the bus method's name, newer than request
    size_t call_size = 0;
    int argc = 0;
    char** argv = nullptr;
    const char* version = "";
    const char* start = "boot";
    int part = 1;       // of the recording: +1 at each rotation
    int64_t began = 0;  // the first part's time: tells recordings apart
    LoopTimer failed_timer;
    Loop* failed_loop = nullptr;
};

Recorder g_rec;

// A name from outside as a log line may show it: printable, cut to fit.
struct Shown {
    explicit Shown(const char* name) {
        size_t i = 0;
        for (; name != nullptr && name[i] != '\0' && i < sizeof text - 1; i++)
            text[i] = name[i] >= 0x20 && name[i] < 0x7f ? name[i] : '?';
        text[i] = '\0';
    }
    char text[TRACE_NAME_MAX + 16];
};

int64_t now_ms() {
    Loop* l = g_rec.loop.inner();
    return l != nullptr ? l->now_ms() : 0;
}

Host& bare_host() { return g_rec.installed && g_rec.host.inner() != nullptr ? *g_rec.host.inner() : host(); }

void install() {
    if (g_rec.installed)
        return;
    Seams s = installed_seams();
    if (s.loop != nullptr) {
        g_rec.loop.set_inner(s.loop);
        s.loop = &g_rec.loop;
    }
    if (s.host != nullptr) {
        g_rec.host.set_inner(s.host);
        s.host = &g_rec.host;
    }
    if (s.uci != nullptr) {
        g_rec.uci.set_inner(s.uci);
        s.uci = &g_rec.uci;
    }
    if (s.krel != nullptr) {
        g_rec.krel.set_inner(s.krel);
        s.krel = &g_rec.krel;
    }
    if (s.bus != nullptr) {
        g_rec.bus.set_inner(s.bus);
        s.bus = &g_rec.bus;
    }
    (void)install_seams(s);
    g_rec.installed = true;
}

void uninstall() {
    if (!g_rec.installed)
        return;
    Seams s = installed_seams();
    if (s.loop == &g_rec.loop)
        s.loop = g_rec.loop.inner();
    if (s.host == &g_rec.host)
        s.host = g_rec.host.inner();
    if (s.uci == &g_rec.uci)
        s.uci = g_rec.uci.inner();
    if (s.krel == &g_rec.krel)
        s.krel = g_rec.krel.inner();
    else
        (void)steering_gate_swap_inner(&g_rec.krel, g_rec.krel.inner());
    if (s.bus == &g_rec.bus)
        s.bus = g_rec.bus.inner();
    (void)install_seams(s);
    g_rec.loop.release();
    g_rec.installed = false;
}

bool take_buffers() {
    if (g_rec.buf == nullptr)
        g_rec.buf = trace_buffers_take();
    if (g_rec.buf == nullptr)
        return false;
    g_rec.line = &g_rec.buf->line;
    g_rec.bus.set_scratch(&g_rec.buf->reply, &g_rec.buf->msg);
    return true;
}

// Given back when no trace is on or waited for, and no bus call that
// records through them is in flight.
void drop_buffers_if_idle() {
    if (g_rec.buf == nullptr || g_rec.mode != Mode::OFF || g_rec.call[0] != '\0' || g_rec.holds > 0)
        return;
    g_rec.bus.set_scratch(nullptr, nullptr);
    g_rec.line = &g_rec.none;
    trace_buffers_give(g_rec.buf);
    g_rec.buf = nullptr;
}

void write_header() {
    TraceLine& l = g_rec.buf->header;
    l.begin(now_ms(), "header");
    l.num("lynd_trace", TRACE_FORMAT_VERSION);
    l.str("daemon", g_rec.version);
    l.str("host_order", trace_host_byte_order());
    l.num("word_bits", static_cast<int64_t>(sizeof(void*) * 8));
    l.str("start", g_rec.start);
    l.num("part", g_rec.part);
    l.num("began", g_rec.began);
    l.argv("args", g_rec.argv);
    size_t len = 0;
    const char* config = config_running_text(&len);
    l.text("config", config, len);
    l.end();
    g_rec.buf->file.append_header(l.data(), l.size());
}

void to_file(const char* data, size_t len) {
    TraceFile& f = g_rec.buf->file;
    f.append(data, len);
    if (!f.rotated())
        return;
    f.clear_rotated();
    const char* start = g_rec.start;
    g_rec.start = "rotated";
    g_rec.part++;
    write_header();
    // A new file holds its header at once: it is never an empty file of ours.
    (void)f.flush();
    g_rec.start = start;
    f.append(data, len);
}

bool asked_from_outside() { return g_rec.request[0] != '\0' || g_rec.call[0] != '\0'; }

// The end of a trace whose file failed: one line, then no trace.
void end_failed() {
    TraceFile& f = g_rec.buf->file;
    int error = f.failure();
    const char* what = f.failure_what();
    char path[TRACE_PATH_MAX];
    std::memcpy(path, f.path(), sizeof path);
    f.close();
    g_rec.mode = Mode::OFF;
    g_rec.call[0] = '\0';
    if (g_rec.failed_loop != nullptr)
        (void)g_rec.failed_loop->timer_cancel(&g_rec.failed_timer);
    g_rec.failed_loop = nullptr;
    uninstall();
    drop_buffers_if_idle();
    LYND_ERR("record %s: %s: %s: the trace ends here", path, what, std::strerror(error));
}

void on_failed_timer(LoopTimer*) {
    g_rec.failed_loop = nullptr;
    if (g_rec.mode == Mode::FAILED)
        end_failed();
}

// Noticed inside a seam call: the decorators must stay until it returns.
void file_failed() {
    g_rec.mode = Mode::FAILED;
    Loop* l = g_rec.loop.inner();
    if (l == nullptr || g_rec.failed_loop != nullptr)
        return;
    g_rec.failed_timer.cb = on_failed_timer;
    if (l->timer_set(&g_rec.failed_timer, 0) == 0)
        g_rec.failed_loop = l;
}

// Opens the trace at name in dir and writes its header: 0, or -errno after
// a line that says why.
int open_file(const char* dir, const char* name, size_t size, bool strict) {
    char why[200];
    int fd = trace_place_open(dir, name, size, strict, bare_host(), why, sizeof why);
    if (fd < 0) {
        LYND_ERR("record %s: %s", Shown(name).text, why);
        return fd;
    }
    TraceFile& f = g_rec.buf->file;
    int rc = f.open(fd, dir, name, size);
    if (rc != 0) {
        LYND_ERR("record %s/%s: %s", dir, name, std::strerror(-rc));
        return rc;
    }
    g_rec.part = 1;
    g_rec.began = now_ms();
    write_header();
    if (!f.flush()) {
        LYND_ERR("record %s: %s: %s", f.path(), f.failure_what(), std::strerror(f.failure()));
        return -f.failure();
    }
    return 0;
}

// The desk's path as its directory and name.
int open_desk(const char* path, size_t size) {
    const char* slash = std::strrchr(path, '/');
    char dir[TRACE_PATH_MAX] = ".";
    if (slash != nullptr) {
        size_t n = static_cast<size_t>(slash - path);
        if (n >= sizeof dir)
            return -ENAMETOOLONG;
        std::memcpy(dir, path, n);
        dir[n > 0 ? n : 1] = '\0';
        if (n == 0)
            dir[0] = '/';
    }
    return open_file(dir, slash != nullptr ? slash + 1 : path, size, false);
}

void keep_name(char* to, size_t room, const char* path) {
    size_t n = path != nullptr ? std::strlen(path) : 0;
    if (n >= room)
        n = 0;
    if (n > 0)
        std::memcpy(to, path, n);
    to[n] = '\0';
}

// The trace as it stands ends; the buffers stay for the caller.
void end_trace() {
    if (g_rec.mode == Mode::FILE) {
        TraceLine& l = trace_begin("stop");
        l.end();
        to_file(l.data(), l.size());
        g_rec.buf->file.close();
        if (g_rec.buf->file.failure() != 0)
            g_rec.mode = Mode::FAILED;
    }
    if (g_rec.mode == Mode::FAILED) {
        end_failed();
        return;
    }
    g_rec.mode = Mode::OFF;
    if (g_rec.buf != nullptr)
        g_rec.buf->pending.clear();
    uninstall();
}

}  // namespace

TraceLine& trace_begin(const char* kind) {
    g_rec.line->begin(now_ms(), kind);
    return *g_rec.line;
}

void trace_emit() {
    if (g_rec.mode != Mode::PENDING && g_rec.mode != Mode::FILE)
        return;
    TraceLine& l = *g_rec.line;
    l.end();
    if (!l.ok()) {
        // Too long to keep: the place is marked, so a replay stops there.
        l.begin(now_ms(), "cut");
        l.end();
    }
    if (g_rec.mode == Mode::PENDING) {
        g_rec.buf->pending.keep(l.data(), l.size());
        return;
    }
    to_file(l.data(), l.size());
    g_rec.buf->file.maybe_flush(now_ms());
    if (g_rec.buf->file.failure() != 0)
        file_failed();
}

void trace_hold() { g_rec.holds++; }

void trace_unhold() {
    if (g_rec.holds > 0)
        g_rec.holds--;
    drop_buffers_if_idle();
}

void trace_set_dir(const char* dir) { keep_name(g_rec.dir, sizeof g_rec.dir, dir); }

const char* trace_dir() { return g_rec.dir; }

void trace_request(const char* path, size_t size) {
    keep_name(g_rec.request, sizeof g_rec.request, path);
    g_rec.request_size = size;
}

void trace_forbid(bool forbid) { g_rec.forbid = forbid; }

void trace_forget_requests() {
    g_rec.request[0] = '\0';
    g_rec.request_size = 0;
    g_rec.call[0] = '\0';
    g_rec.call_size = 0;
}

void trace_startup(int argc, char** argv, const char* version) {
    end_trace();
    g_rec.start_lacking = false;
    if (g_rec.forbid) {
        drop_buffers_if_idle();
        return;
    }
    g_rec.argc = argc;
    g_rec.argv = argv;
    g_rec.version = version;
    g_rec.start = "boot";
    if (!take_buffers()) {
        // Told at the settling, when it is known whether a trace was asked.
        g_rec.start_lacking = true;
        return;
    }
    g_rec.buf->pending.clear();
    g_rec.mode = Mode::PENDING;
    install();
}

void trace_settle(const char* name, size_t size) {
    bool lacking = g_rec.start_lacking;
    g_rec.start_lacking = false;
    if (g_rec.mode != Mode::PENDING && !lacking)
        return;
    bool strict = true;
    const char* to = name;
    size_t limit = size;
    if (g_rec.call[0] != '\0') {
        to = g_rec.call;
        limit = g_rec.call_size;
        g_rec.start = "call";
    } else if (g_rec.request[0] != '\0') {
        to = g_rec.request;
        limit = g_rec.request_size;
        strict = false;
    }
    bool wanted = to != nullptr && to[0] != '\0';
    g_rec.mode = Mode::OFF;
    int rc = 0;
    if (wanted && lacking) {
        LYND_ERR("record %s: no memory for the trace's buffers: no trace", to);
        rc = -ENOMEM;
    } else if (wanted && g_rec.buf->pending.lost()) {
        LYND_ERR("record %s: the records of the start took more than %zu bytes: no trace", to, TRACE_PENDING_MAX);
        rc = -ENOMEM;
    } else if (wanted) {
        rc = strict ? open_file(g_rec.dir, to, limit, true) : open_desk(to, limit);
    }
    if (!wanted || rc != 0) {
        g_rec.call[0] = '\0';
        uninstall();
        drop_buffers_if_idle();
        return;
    }
    g_rec.mode = Mode::FILE;
    to_file(g_rec.buf->pending.data(), g_rec.buf->pending.size());
    g_rec.buf->pending.clear();
    if (g_rec.buf->file.failure() != 0) {
        g_rec.mode = Mode::FAILED;
        end_failed();
    }
}

int trace_control(const char* path, size_t size, bool enable) {
    if (!enable) {
        g_rec.call[0] = '\0';
        trace_finish();
        return 0;
    }
    if (g_rec.forbid)
        return -EPERM;
    end_trace();
    if (!take_buffers()) {
        LYND_ERR("record %s: no memory for the trace's buffers", path);
        return -ENOMEM;
    }
    g_rec.start = "mid_run";
    int rc = open_desk(path, size);
    if (rc != 0) {
        drop_buffers_if_idle();
        return rc;
    }
    g_rec.mode = Mode::FILE;
    install();
    return 0;
}

int trace_call_request(const char* name, size_t size) {
    // Checked now, so the caller hears of a bad place before the run
    // restarts; the file itself is made at the restart. The room is asked
    // through the seam, so a replay decides as the recording did; the
    // directory is not looked at in a replay.
    char why[200];
    int rc = trace_place_name(g_rec.dir, name, size, why, sizeof why);
    if (rc == 0 && !g_rec.forbid) {
        int fd = trace_place_dir(g_rec.dir, name, size, true, why, sizeof why);
        rc = fd < 0 ? fd : ::close(fd);
    }
    if (rc == 0)
        rc = trace_place_room(host(), g_rec.dir, size, why, sizeof why);
    if (rc < 0) {
        LYND_ERR("record %s: %s", Shown(name).text, why);
        return rc;
    }
    if (g_rec.forbid)
        return 0;
    if (!take_buffers()) {
        LYND_ERR("record %s: no memory for the trace's buffers (%zu bytes)", name, trace_buffers_bytes());
        return -ENOMEM;
    }
    keep_name(g_rec.call, sizeof g_rec.call, name);
    g_rec.call_size = size;
    return 0;
}

void trace_finish() {
    end_trace();
    drop_buffers_if_idle();
}

void trace_finish_fatal() {
    if (g_rec.mode == Mode::PENDING && asked_from_outside())
        trace_settle(nullptr, 0);
    trace_finish();
}

bool trace_recording() { return g_rec.mode == Mode::FILE; }

const char* trace_path() { return g_rec.mode == Mode::FILE ? g_rec.buf->file.path() : ""; }

}  // namespace lynd

#include "trace/trace_recorder.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

#include "bridge/steering_gate.h"
#include "platform/seams.h"
#include "trace/rec_bus.h"
#include "trace/rec_host.h"
#include "trace/rec_krel.h"
#include "trace/rec_loop.h"
#include "trace/rec_uci.h"
#include "trace/trace_file.h"
#include "trace/trace_kinds.h"
#include "trace/trace_sink.h"

namespace lynd {

namespace {

enum class Mode { OFF, PENDING, FILE };

struct Recorder {
    RecLoop loop;
    RecHost host;
    RecUci uci;
    RecKrel krel;
    RecBus bus;
    TraceLine line;
    TraceLine header;  // its own: a rotation writes it while a record waits
    TraceFile file;
    Mode mode = Mode::OFF;
    bool installed = false;
    bool forbid = false;
    bool exit_hook = false;
    char request[TRACE_PATH_MAX] = {};
    size_t request_size = 0;
    char call[TRACE_PATH_MAX] = {};  // the bus method's, newer than request
    size_t call_size = 0;
    char pending[64 * 1024];
    size_t pending_len = 0;
    bool pending_lost = false;
    int argc = 0;
    char** argv = nullptr;
    const char* version = "";
    const char* start = "boot";
    int part = 1;       // of the recording: +1 at each rotation
    int64_t began = 0;  // the first part's time: tells recordings apart
};

Recorder g_rec;

int64_t now_ms() {
    Loop* l = g_rec.loop.inner();
    return l != nullptr ? l->now_ms() : 0;
}

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

void write_header() {
    TraceLine& l = g_rec.header;
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
    const char* config = rec_host_config_text(&len);
    l.text("config", config, len);
    l.end();
    g_rec.file.append(l.data(), l.size());
}

void to_file(const char* data, size_t len) {
    g_rec.file.append(data, len);
    if (!g_rec.file.rotated())
        return;
    g_rec.file.clear_rotated();
    const char* start = g_rec.start;
    g_rec.start = "rotated";
    g_rec.part++;
    write_header();
    g_rec.start = start;
    g_rec.file.append(data, len);
}

bool asked_from_outside() { return g_rec.request[0] != '\0' || g_rec.call[0] != '\0'; }

void at_exit() {
    if (g_rec.mode == Mode::PENDING && asked_from_outside())
        trace_settle(nullptr, 0);
    trace_finish();
}

int open_file(const char* path, size_t size) {
    int rc = g_rec.file.open(path, size);
    if (rc != 0)
        return rc;
    if (!g_rec.exit_hook) {
        g_rec.exit_hook = true;
        std::atexit(at_exit);
    }
    g_rec.part = 1;
    g_rec.began = now_ms();
    write_header();
    return 0;
}

}  // namespace

TraceLine& trace_begin(const char* kind) {
    g_rec.line.begin(now_ms(), kind);
    return g_rec.line;
}

void trace_emit() {
    TraceLine& l = g_rec.line;
    l.end();
    if (!l.ok()) {
        // Too long to keep: the place is marked, so a replay stops there.
        l.begin(now_ms(), "cut");
        l.end();
    }
    if (g_rec.mode == Mode::PENDING) {
        if (l.size() > sizeof g_rec.pending - g_rec.pending_len) {
            g_rec.pending_lost = true;
            return;
        }
        std::memcpy(g_rec.pending + g_rec.pending_len, l.data(), l.size());
        g_rec.pending_len += l.size();
    } else if (g_rec.mode == Mode::FILE) {
        to_file(l.data(), l.size());
        g_rec.file.maybe_flush(now_ms());
    }
}

namespace {

void keep_path(char (&to)[TRACE_PATH_MAX], const char* path) {
    size_t n = path != nullptr ? std::strlen(path) : 0;
    if (n >= sizeof to)
        n = 0;
    if (n > 0)
        std::memcpy(to, path, n);
    to[n] = '\0';
}

}  // namespace

void trace_request(const char* path, size_t size) {
    keep_path(g_rec.request, path);
    g_rec.request_size = size;
}

void trace_forbid(bool forbid) { g_rec.forbid = forbid; }

void trace_watch_config(const char* config_path) { g_rec.host.watch_config(config_path); }

void trace_startup(int argc, char** argv, const char* version) {
    trace_finish();
    if (g_rec.forbid)
        return;
    g_rec.argc = argc;
    g_rec.argv = argv;
    g_rec.version = version;
    g_rec.start = "boot";
    g_rec.pending_len = 0;
    g_rec.pending_lost = false;
    g_rec.mode = Mode::PENDING;
    install();
    if (!g_rec.exit_hook && asked_from_outside()) {
        // A fatal start-up error exits at once: the trace still tells why.
        g_rec.exit_hook = true;
        std::atexit(at_exit);
    }
}

void trace_settle(const char* path, size_t size) {
    if (g_rec.mode != Mode::PENDING)
        return;
    const char* to = path;
    size_t limit = size;
    if (g_rec.call[0] != '\0') {
        to = g_rec.call;
        limit = g_rec.call_size;
        g_rec.start = "call";
    } else if (g_rec.request[0] != '\0') {
        to = g_rec.request;
        limit = g_rec.request_size;
    }
    g_rec.mode = Mode::OFF;
    if (to == nullptr || to[0] == '\0' || g_rec.pending_lost || open_file(to, limit) != 0) {
        uninstall();
        return;
    }
    g_rec.mode = Mode::FILE;
    to_file(g_rec.pending, g_rec.pending_len);
    g_rec.pending_len = 0;
}

int trace_control(const char* path, size_t size, bool enable) {
    if (!enable) {
        g_rec.call[0] = '\0';
        trace_finish();
        return 0;
    }
    if (g_rec.forbid)
        return -EPERM;
    trace_finish();
    g_rec.start = "mid_run";
    int rc = open_file(path, size);
    if (rc != 0)
        return rc;
    g_rec.mode = Mode::FILE;
    install();
    return 0;
}

int trace_call_request(const char* path, size_t size) {
    if (g_rec.forbid)
        return 0;
    if (path == nullptr || std::strlen(path) + 2 >= TRACE_PATH_MAX)
        return -ENAMETOOLONG;
    // Tried now, so the caller hears of a bad place before the run restarts;
    // the trace now written to that name is ended by the restart anyway.
    if (!trace_recording() || std::strcmp(path, g_rec.file.path()) != 0) {
        int fd = trace_create(path);
        if (fd < 0)
            return fd;
        ::close(fd);
    }
    keep_path(g_rec.call, path);
    g_rec.call_size = size;
    return 0;
}

void trace_finish() {
    if (g_rec.mode == Mode::FILE) {
        trace_begin("stop");
        g_rec.line.end();
        to_file(g_rec.line.data(), g_rec.line.size());
        g_rec.file.close();
    }
    g_rec.mode = Mode::OFF;
    g_rec.pending_len = 0;
    uninstall();
}

bool trace_recording() { return g_rec.mode == Mode::FILE; }

const char* trace_path() { return g_rec.mode == Mode::FILE ? g_rec.file.path() : ""; }

}  // namespace lynd

#include "daemon/record_method.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "config/config_record.h"
#include "core/log.h"
#include "daemon/restart_request.h"
#include "trace/trace_file.h"
#include "trace/trace_recorder.h"

using lynd::BusType;

const lynd::bus_policy record_args[3] = {
    {"enable", lynd::BUS_TYPE_BOOL}, {"file", BusType::STRING}, {"size", BusType::INT32}};

namespace {

enum { A_ENABLE, A_FILE, A_SIZE, A_COUNT };

// The trace ends here; the run goes on.
int stop(lynd::BusReply& r) {
    const char* was = lynd::trace_recording() ? lynd::trace_path() : "";
    char ended[lynd::TRACE_PATH_MAX];
    std::snprintf(ended, sizeof ended, "%s", was);
    (void)lynd::trace_control(nullptr, 0, false);
    r.put_bool("record", false);
    r.put_string("file", ended);
    r.put_bool("restart", false);
    return lynd::BUS_STATUS_OK;
}

// A refusal's status: what the caller got wrong, or what the node lacks.
int refusal_status(int rc) {
    return rc == -EINVAL || rc == -EFBIG ? lynd::BUS_STATUS_INVALID_ARGUMENT : lynd::BUS_STATUS_UNKNOWN_ERROR;
}

}  // namespace

int record_method(lynd_config* conf, const lynd::BusMessage& args, lynd::BusReply& r) {
    const lynd::BusAttr* tb[A_COUNT] = {};
    lynd::BusAttr found[A_COUNT];
    (void)lynd::bus_parse(record_args, A_COUNT, tb, found, args);
    if (tb[A_ENABLE] == nullptr)
        return lynd::BUS_STATUS_INVALID_ARGUMENT;
    if (tb[A_ENABLE]->i == 0)
        return stop(r);
    const char* file = tb[A_FILE] != nullptr ? tb[A_FILE]->str : conf->record;
    size_t size = conf->record_size;
    if (tb[A_SIZE] != nullptr && tb[A_SIZE]->i > 0)
        size = static_cast<size_t>(tb[A_SIZE]->i < LYND_RECORD_SIZE_MIN ? LYND_RECORD_SIZE_MIN : tb[A_SIZE]->i);
    int rc = lynd::trace_call_request(file != nullptr ? file : "", size);
    if (rc != 0)
        return refusal_status(rc);
    // A trace from a start replays: the run restarts once this reply is out.
    // The name only: the directory is the daemon's, and a replay's may differ.
    LYND_WARN("record %s: the daemon's run restarts to begin the trace", file);
    lynd_restart_request();
    r.put_bool("record", true);
    r.put_string("file", file);
    r.put_int("size", static_cast<int64_t>(size));
    r.put_bool("restart", true);
    return lynd::BUS_STATUS_OK;
}

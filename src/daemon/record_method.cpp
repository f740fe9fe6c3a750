#include "daemon/record_method.h"

#include <cerrno>
#include <cstring>

#include "core/log.h"
#include "trace/trace_recorder.h"

using lynd::BusType;

const lynd::bus_policy record_args[3] = {
    {"enable", lynd::BUS_TYPE_BOOL}, {"file", BusType::STRING}, {"size", BusType::INT32}};

namespace {

enum { A_ENABLE, A_FILE, A_SIZE, A_COUNT };

}  // namespace

int record_method(lynd_config* conf, const lynd::BusMessage& args, lynd::BusReply& r) {
    const lynd::BusAttr* tb[A_COUNT] = {};
    lynd::BusAttr found[A_COUNT];
    (void)lynd::bus_parse(record_args, A_COUNT, tb, found, args);
    if (tb[A_ENABLE] == nullptr)
        return lynd::BUS_STATUS_INVALID_ARGUMENT;
    const char* file = tb[A_FILE] != nullptr ? tb[A_FILE]->str : conf->record;
    size_t size = tb[A_SIZE] != nullptr && tb[A_SIZE]->i > 0 ? static_cast<size_t>(tb[A_SIZE]->i) : conf->record_size;
    bool enable = tb[A_ENABLE]->i != 0;
    if (enable && (file == nullptr || file[0] != '/'))
        return lynd::BUS_STATUS_INVALID_ARGUMENT;
    int rc = lynd::trace_control(file, size, enable);
    if (rc != 0) {
        LYND_ERR("record %s: %s", file, std::strerror(-rc));
        return lynd::BUS_STATUS_UNKNOWN_ERROR;
    }
    r.put_bool("record", lynd::trace_recording());
    r.put_string("file", lynd::trace_path());
    return lynd::BUS_STATUS_OK;
}

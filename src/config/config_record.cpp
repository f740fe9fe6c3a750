#include "config/config_record.h"

#include <cstring>

#include "config/config_report.h"
#include "config/json_read.h"
#include "core/trace_name.h"

namespace {

constexpr int32_t kDefaultRecordSize = 1024 * 1024;

}  // namespace

void config_load_record(lynd_config* conf, json_object* root, config_report* report) {
    conf->record[0] = '\0';
    conf->record_size = kDefaultRecordSize;
    json_object* v = nullptr;
    if (!json_has(root, "record", &v) || !json_object_is_type(v, json_type_string))
        return;
    const char* name = json_object_get_string(v);
    const char* why = trace_name_refusal(name);
    if (why[0] != '\0') {
        config_note(report, config_severity::ERROR, "record",
                    "\"%.80s\" is %s; a trace is a file name in %s/, no trace is written", name, why,
                    TRACE_DIR_DEFAULT);
        return;
    }
    std::memcpy(conf->record, name, std::strlen(name) + 1);
    int32_t size = json_int_or(root, "record_size", kDefaultRecordSize);
    if (size > LYND_RECORD_SIZE_MAX) {
        config_note(report, config_severity::WARNING, "record_size", "%d is over the most a trace file may take; using %d",
                    size, LYND_RECORD_SIZE_MAX);
        size = LYND_RECORD_SIZE_MAX;
    }
    conf->record_size = static_cast<uint32_t>(size < LYND_RECORD_SIZE_MIN ? LYND_RECORD_SIZE_MIN : size);
}

#include "config/config_record.h"

#include <cstring>

#include "config/json_read.h"
#include "core/log.h"

namespace {

constexpr int32_t kDefaultRecordSize = 1024 * 1024;

}  // namespace

void config_load_record(lynd_config* conf, json_object* root) {
    conf->record[0] = '\0';
    conf->record_size = kDefaultRecordSize;
    json_object* v = nullptr;
    if (!json_has(root, "record", &v) || !json_object_is_type(v, json_type_string))
        return;
    const char* path = json_object_get_string(v);
    size_t n = std::strlen(path);
    if (n == 0 || n >= sizeof conf->record || path[0] != '/') {
        LYND_ERR("record: \"%s\" is not an absolute path of at most %zu characters", path, sizeof conf->record - 1);
        return;
    }
    std::memcpy(conf->record, path, n + 1);
    int32_t size = json_int_or(root, "record_size", kDefaultRecordSize);
    conf->record_size = static_cast<uint32_t>(size < LYND_RECORD_SIZE_MIN ? LYND_RECORD_SIZE_MIN : size);
}

#include "platform/driver_requests.h"

namespace lynd {

const DriverRequest* find_driver_request(const DriverRequests* d, unsigned long number) {
    if (d == nullptr)
        return nullptr;
    for (size_t i = 0; i < d->count; i++)
        if (d->rows[i].number == number)
            return &d->rows[i];
    return nullptr;
}

}  // namespace lynd

#include "wlan/qca/qca_layouts.h"

#include <iterator>

#include "wlan/qca/qca_ioctl.h"

using lynd::ByteField;
using lynd::ByteLayout;
using lynd::DriverIn;
using lynd::DriverOut;
using lynd::DriverRequest;

namespace {

// The multi-byte fields the daemon reads; the record's own length is turned
// with them by its place in the layout.
constexpr ByteField kStaFields[] = {
    {STA_OFF_NOISE, 4},
    {STA_OFF_TXRATE, 4},
    {STA_OFF_IDLE, 2},
    {STA_OFF_RXRATE, 4},
};
constexpr uint16_t kStaMacs[] = {STA_OFF_MAC};
constexpr ByteLayout kSta = {kStaFields, std::size(kStaFields), QCA_STA_RECORD_MIN, STA_OFF_LEN,
                             kStaMacs,   std::size(kStaMacs)};
static_assert(lynd::byte_layout_sound(kSta), "station record layout");

// The sub-command leads the block.
constexpr ByteField kWdsFields[] = {{0, 4}};
constexpr uint16_t kWdsMacs[] = {QCA_WDS_CMD_MAC_OFFSET};
constexpr ByteLayout kWds = {kWdsFields, std::size(kWdsFields), 0, 0, kWdsMacs, std::size(kWdsMacs)};
static_assert(lynd::byte_layout_sound(kWds), "WDS command layout");

const DriverRequest kRequests[] = {
    {QCA_IOCTL_GET_PARAM, DriverIn::VALUE, DriverOut::VALUE, 0, nullptr},
    {QCA_IOCTL_GENERIC, DriverIn::COMMAND, DriverOut::NOTHING, 0, &kWds},
    {QCA_IOCTL_STA_TABLE, DriverIn::ROOM, DriverOut::TABLE, QCA_STA_TABLE_SIZE, &kSta},
    {IW_IOCTL_GET_MODE, DriverIn::NOTHING, DriverOut::MODE, 0, nullptr},
    {IW_IOCTL_GET_AP, DriverIn::NOTHING, DriverOut::ADDRESS, 0, nullptr},
};

}  // namespace

const lynd::DriverRequests qca_driver_requests = {kRequests, std::size(kRequests)};

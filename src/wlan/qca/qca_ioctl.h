// Requests to the QCA wireless driver: the request numbers, sizes and
// offsets the driver expects. The record itself is the kernel's (iw_request).
#pragma once
#include <cstddef>
#include <cstdint>

#include "platform/iw_request.h"

constexpr unsigned long QCA_IOCTL_STA_TABLE = 0x89F6;  // SIOCDEVPRIVATE + 6
constexpr unsigned long QCA_IOCTL_GET_PARAM = 0x8BE1;  // SIOCIWFIRSTPRIV + 1
constexpr unsigned long QCA_IOCTL_GENERIC = 0x89FC;    // SIOCDEVPRIVATE + 12
constexpr unsigned long IW_IOCTL_GET_MODE = 0x8B07;    // SIOCGIWMODE
constexpr unsigned long IW_IOCTL_GET_AP = 0x8B15;      // SIOCGIWAP
constexpr uint32_t IW_MODE_AD_HOC = 1;

constexpr int32_t QCA_PARAM_CHANNEL_UTIL = 261;
constexpr uint32_t QCA_CMD_WDS_DELETE = 38;

constexpr size_t QCA_STA_TABLE_SIZE = 24576;  // reply buffer of the station table
constexpr size_t QCA_STA_RECORD_MIN = 464;    // a reply shorter than this holds no station
constexpr size_t QCA_STA_MAX_LINKS = 16;
constexpr size_t QCA_WDS_CMD_SIZE = 1560;
constexpr size_t QCA_WDS_CMD_MAC_OFFSET = 16;

// Offsets of the fields read from one station record.
constexpr size_t STA_OFF_LEN = 0;         // u16, the record's own length
constexpr size_t STA_OFF_NOISE = 4;       // s32, dBm
constexpr size_t STA_OFF_SNR = 35;        // s8, dB above noise
constexpr size_t STA_OFF_MAC = 45;        // 6 bytes
constexpr size_t STA_OFF_RATES = 52;      // 500 kbit/s units, bit 7 = basic rate
constexpr size_t STA_OFF_RATE_INDEX = 96; // u8, current tx rate in the rate array
constexpr size_t STA_OFF_TXRATE = 100;    // u32, kbit/s
constexpr size_t STA_OFF_IDLE = 180;      // u16
constexpr size_t STA_OFF_RXRATE = 196;    // u32, kbit/s

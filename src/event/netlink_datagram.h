// Pure readers of received netlink datagrams. Every length is checked
// against the bytes actually received before anything is read.
#pragma once
#include <cstddef>
#include <cstdint>

#include "core/event_records.h"

constexpr size_t NL_RECV_BUF_SIZE = 16384;
constexpr size_t NLMSG_HEADER_LEN = 16;
constexpr uint16_t NL_RTM_NEWLINK = 16;
constexpr uint16_t NL_IFLA_WIRELESS = 11;
constexpr uint16_t NL_RTM_DELLINK = 17;
constexpr uint16_t NL_IWEVEXPIRED = 0x8C04;
constexpr size_t IFINFOMSG_INDEX_OFFSET = NLMSG_HEADER_LEN + 4;
constexpr size_t IFLA_ATTRS_OFFSET = NLMSG_HEADER_LEN + 16;
constexpr size_t RTATTR_HEADER_LEN = 4;
constexpr size_t IW_EVENT_MIN_LEN = 8;

// The first message's length field as a zeroed receive buffer holds it.
uint32_t nl_first_msg_len(const uint8_t* buf, size_t n);
uint16_t nl_first_msg_type(const uint8_t* buf, size_t n);

// True when the first message of the datagram is complete.
bool nl_first_msg_ok(const uint8_t* buf, size_t n);

// The bridge event of a datagram whose first message is complete; logs the
// datagram otherwise.
bool event_hyfi_datagram(const uint8_t* buf, size_t n, bridge_event* out);

// True when the wireless event stream reports a departed station.
bool __isDisassociateEvent(const uint8_t* events, size_t len);
// True when an IFLA_WIRELESS attribute among attrs reports a departure.
bool nl_wifi_parse_attrs(const uint8_t* attrs, size_t len);

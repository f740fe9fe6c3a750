#include "event/ubus_policy.h"

using lynd::BusType;

const lynd::bus_policy configure_policy[__CONFIGURE_MAX] = {
    {"mode", BusType::STRING},
    {"hc_enable", BusType::INT32},
    {"follow_re", BusType::INT32},
    {"tcp_sp", BusType::INT32},
};

const lynd::bus_policy link_state_policy[__LINK_STATE_MAX] = {
    {"link_state", BusType::INT32},
};

const lynd::bus_policy debug_policy[__DEBUG_MAX] = {
    {"dbg_level", BusType::INT32}, {"dump", BusType::INT32},
    {"overload", BusType::INT32},   {"path", BusType::INT32},
    {"ifname", BusType::STRING},      {"txrate", BusType::INT32},
    {"rxrate", BusType::INT32},       {"rssi", BusType::INT32},
    {"noise", BusType::INT32},         {"txbytes", BusType::INT32},
    {"rxbytes", BusType::INT32},     {"pathsel", BusType::INT32},
    {"brconf", BusType::INT32},
};

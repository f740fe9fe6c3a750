// A driver request in the trace, as the recorder writes it from the QCA
// back-end's description: the same fields, in the same order, as traces
// recorded before the recorder learned them from the back-end.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "trace/host_requests.h"
#include "wlan/qca/qca_ioctl.h"
#include "wlan/qca/qca_layouts.h"

namespace {

uint8_t g_cmd[QCA_WDS_CMD_SIZE];
uint8_t g_table[2 * QCA_STA_RECORD_MIN];
const uint8_t kMac[] = {0x02, 0x11, 0x22, 0x33, 0x44, 0x55};

void fill_param(iw_request& r) { r.u.value = QCA_PARAM_CHANNEL_UTIL; }

void fill_wds(iw_request& r) {
    uint32_t cmd = QCA_CMD_WDS_DELETE;  // the driver's fields are in host order
    std::memcpy(g_cmd, &cmd, sizeof cmd);
    std::memcpy(g_cmd + QCA_WDS_CMD_MAC_OFFSET, kMac, 6);
    r.u.data.pointer = g_cmd;
    r.u.data.length = QCA_WDS_CMD_SIZE;
}

void fill_room(iw_request& r) {
    r.u.data.pointer = g_table;
    r.u.data.length = sizeof g_table;
}

// One station: its length, a noise of -95 dBm, its address, idle 3.
void answer_table(iw_request& r) {
    uint16_t len = QCA_STA_RECORD_MIN;
    int32_t noise = -95;
    std::memcpy(g_table + STA_OFF_LEN, &len, sizeof len);
    std::memcpy(g_table + STA_OFF_NOISE, &noise, sizeof noise);
    std::memcpy(g_table + STA_OFF_MAC, kMac, 6);
    uint16_t idle = 3;
    std::memcpy(g_table + STA_OFF_IDLE, &idle, sizeof idle);
    r.u.data.length = QCA_STA_RECORD_MIN;
}

struct Case {
    const char* what;
    unsigned long request;
    void (*fill)(iw_request&);
    void (*answer)(iw_request&);
    int rc;
    const char* line;  // after {"t":0,"k":"ioctl","fd":5,
};

const Case kCases[] = {
    {"a parameter", QCA_IOCTL_GET_PARAM, fill_param, [](iw_request& r) { r.u.value = 42; }, 0,
     R"("req":35809,"if":"ath1","param":261,"rc":0,"value":42})"},
    {"a parameter refused", QCA_IOCTL_GET_PARAM, fill_param, nullptr, -95,
     R"("req":35809,"if":"ath1","param":261,"rc":-95})"},
    {"a WDS delete", QCA_IOCTL_GENERIC, fill_wds, nullptr, 0,
     R"("req":35324,"if":"ath1","cmd":"26z15.021122334455z1538.","rc":0})"},
    {"the station table", QCA_IOCTL_STA_TABLE, fill_room, answer_table, 0,
     R"("req":35318,"if":"ath1","len":928,"rc":0,"got":464,"data":"d0010000a1ffffffz37.021122334455z129.03z283."})"},
    {"the mode", IW_IOCTL_GET_MODE, nullptr, [](iw_request& r) { r.u.mode = 2; }, 0,
     R"("req":35591,"if":"ath1","rc":0,"mode":2})"},
    {"the access point", IW_IOCTL_GET_AP, nullptr,
     [](iw_request& r) {
         r.u.addr.family = 1;
         std::memcpy(r.u.addr.bytes, kMac, 6);
     },
     0, R"("req":35605,"if":"ath1","rc":0,"family":1,"addr":"021122334455z8."})"},
    {"a request the back-end does not describe", 0x8B01, nullptr, [](iw_request& r) { r.u.value = 7; }, 0,
     R"("req":35585,"if":"ath1","rc":0})"},
};

std::string recorded(const Case& c, const lynd::DriverRequests* described) {
    static lynd::TraceLine l(1 << 16);
    std::memset(g_table, 0, sizeof g_table);
    iw_request r{};
    std::strcpy(r.name, "ath1");
    if (c.fill != nullptr)
        c.fill(r);
    const lynd::DriverRequest* d = lynd::find_driver_request(described, c.request);
    l.begin(0, "ioctl");
    lynd::req_ioctl(l, 5, c.request, &r, d);
    if (c.rc >= 0 && c.answer != nullptr)
        c.answer(r);
    lynd::ioctl_answer(l, &r, c.rc, d);
    l.end();
    return std::string(l.data(), l.size());
}

TEST(IoctlRecord, EachRequestKeepsItsFields) {
    for (const Case& c : kCases)
        EXPECT_EQ(std::string(R"({"t":0,"k":"ioctl","fd":5,)") + c.line + "\n", recorded(c, &qca_driver_requests))
            << c.what;
}

// Before a back-end handed its description over, or with none: who was
// asked what, and the result, but no payload read by guess.
TEST(IoctlRecord, WithNoDescriptionOnlyTheRequestAndItsResult) {
    for (const Case& c : kCases) {
        std::string line = recorded(c, nullptr);
        std::string head = std::string(R"({"t":0,"k":"ioctl","fd":5,"req":)") + std::to_string(c.request) +
                           R"(,"if":"ath1","rc":)" + std::to_string(c.rc) + "}\n";
        EXPECT_EQ(head, line) << c.what;
    }
}

}  // namespace

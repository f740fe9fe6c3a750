#include <gtest/gtest.h>

extern "C" {
#include <libubox/blobmsg.h>
}

#include "event/ubus_policy.h"
#include "targets/openwrt/ubus_message.h"

namespace {

class UbusMessageTest : public ::testing::Test {
protected:
    void SetUp() override { blob_buf_init(&b, 0); }
    void TearDown() override { blob_buf_free(&b); }
    // The message's attributes, as the walk hands them out.
    lynd::BusMessage convert() {
        lynd::BusMessage m;
        lynd::ubus_message_from_blob(blob_data(b.head), blob_len(b.head), &m);
        size_t n = 0;
        lynd::BusAttr a;
        for (size_t pos = 0; n < 64 && m.walk != nullptr && m.walk(m.raw, m.raw_len, &pos, &a);)
            attrs[n++] = a;
        return m;
    }
    blob_buf b{};
    lynd::BusAttr attrs[64];
    lynd::BusAttr found[__DEBUG_MAX + __CONFIGURE_MAX];
};

TEST_F(UbusMessageTest, TypesAndValuesAsUbusSendBuildsThem) {
    blobmsg_add_string(&b, "mode", "AP");
    blobmsg_add_u32(&b, "hc_enable", static_cast<uint32_t>(-2));
    blobmsg_add_u64(&b, "big", 1ull << 40);
    blobmsg_add_u8(&b, "flag", 1);
    blobmsg_add_double(&b, "ratio", 0.5);
    void* t = blobmsg_open_table(&b, "nested");
    blobmsg_add_u32(&b, "inner", 1);
    blobmsg_close_table(&b, t);
    lynd::BusMessage m = convert();
    ASSERT_FALSE(m.malformed);
    ASSERT_EQ(6u, m.count);
    EXPECT_STREQ("AP", attrs[0].str);
    EXPECT_EQ(lynd::BusType::INT32, attrs[1].type);
    EXPECT_EQ(-2, attrs[1].i);
    EXPECT_EQ(lynd::BusType::INT64, attrs[2].type);
    EXPECT_EQ(1ll << 40, attrs[2].i);
    EXPECT_EQ(lynd::BUS_TYPE_BOOL, attrs[3].type);
    EXPECT_DOUBLE_EQ(0.5, attrs[4].d);
    EXPECT_EQ(lynd::BusType::TABLE, attrs[5].type);
    const lynd::BusAttr* tb[__CONFIGURE_MAX];
    ASSERT_EQ(0, lynd::bus_parse(configure_policy, __CONFIGURE_MAX, tb, found, m));
    EXPECT_STREQ("AP", tb[CONFIGURE_MODE]->str);
}

TEST_F(UbusMessageTest, LyingLengthMarksTheMessageMalformed) {
    blobmsg_add_u32(&b, "link_state", 48);
    lynd::BusMessage m;
    // Cut the buffer short of what the attribute claims.
    lynd::ubus_message_from_blob(blob_data(b.head), blob_len(b.head) - 2, &m);
    EXPECT_TRUE(m.malformed || m.count == 0);
    const lynd::BusAttr* tb[__LINK_STATE_MAX];
    EXPECT_EQ(-1, lynd::bus_parse(link_state_policy, __LINK_STATE_MAX, tb, found, m));
    lynd::ubus_message_from_blob(nullptr, 0, &m);
    EXPECT_EQ(0u, m.count);
}

// A field after many others is found, as blobmsg_parse finds it.
TEST_F(UbusMessageTest, NoAttributeIsDroppedHoweverManyComeFirst) {
    for (int i = 0; i < 40; i++)
        blobmsg_add_u32(&b, "x", static_cast<uint32_t>(i));
    blobmsg_add_string(&b, "link_state", "16");  // the wrong type: passed over
    blobmsg_add_u32(&b, "link_state", 16);
    blobmsg_add_u32(&b, "link_state", 32);
    lynd::BusMessage m = convert();
    EXPECT_EQ(43u, m.count);
    EXPECT_FALSE(m.malformed);
    const lynd::BusAttr* tb[__LINK_STATE_MAX];
    ASSERT_EQ(0, lynd::bus_parse(link_state_policy, __LINK_STATE_MAX, tb, found, m));
    ASSERT_NE(nullptr, tb[LINK_STATE_LINK_STATE]);
    EXPECT_EQ(16, tb[LINK_STATE_LINK_STATE]->i);
}

}  // namespace

// The bus object against a real ubusd (named by LYND_UBUSD; skipped without
// it): one process owns the object, the test calls it as `ubus call` would.
#include <gtest/gtest.h>
#include <json-c/json.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

extern "C" {
#include <libubox/blobmsg_json.h>
#include <libubox/uloop.h>
#include <libubus.h>
}

#include "targets/openwrt/ubus_bus.h"

namespace {

using lynd::BusType;

const lynd::bus_policy echo_args[] = {{"mac", BusType::STRING}, {"on", lynd::BUS_TYPE_BOOL}};
const lynd::BusMethod methods[] = {
    {"info", nullptr, 0}, {"echo", echo_args, 2}, {"missing", nullptr, 0}, {"last", nullptr, 0}};

int answer(void*, const char* method, const lynd::BusMessage& args, lynd::BusReply& r) {
    if (std::strcmp(method, "info") == 0) {
        r.put_string("name", "lynd");
        r.put_int("small", -5);
        r.put_int("big", int64_t{1} << 40);
        r.put_bool("on", true);
        r.open_array("list");
        r.open_table(nullptr);
        r.put_int("n", 1);
        r.close();
        r.close();
        return lynd::BUS_STATUS_OK;
    }
    lynd::BusAttr mac{};
    if (std::strcmp(method, "echo") == 0) {
        if (!lynd::bus_find(args, "mac", &mac) || mac.type != BusType::STRING)
            return lynd::BUS_STATUS_INVALID_ARGUMENT;
        r.put_string("mac", mac.str);
        return lynd::BUS_STATUS_OK;
    }
    if (std::strcmp(method, "last") == 0) {  // as the record call: the run ends once this is out
        uloop_end();
        r.put_bool("restart", true);
        return lynd::BUS_STATUS_OK;
    }
    return lynd::BUS_STATUS_NOT_FOUND;
}

const lynd::BusObject object = {"lynd-test", methods, 4, answer, nullptr};

// The owner's side: the object, and a new connection whenever ubusd is back.
lynd::UbusBus* g_owner;
uloop_timeout g_retry;

void retry(uloop_timeout* t) {
    if (g_owner->reconnect() == 0 && g_owner->add_object(object) == 0)
        g_owner->add_to_loop();
    else
        uloop_timeout_set(t, 100);
}

void lost(void*) { uloop_timeout_set(&g_retry, 100); }

[[noreturn]] void own(const char* socket) {
    uloop_init();
    lynd::UbusBus bus(socket);
    g_owner = &bus;
    g_retry.cb = retry;
    if (bus.connect() != 0 || bus.add_object(object) != 0)
        _exit(1);
    bus.set_lost_handler(lost, nullptr);
    bus.add_to_loop();
    uloop_run();
    bus.free();
    _exit(0);
}

void on_data(ubus_request* req, int, blob_attr* msg) {
    char* s = blobmsg_format_json(msg, true);
    *static_cast<std::string*>(req->priv) = s != nullptr ? s : "";
    std::free(s);
}

void on_lookup(ubus_context*, ubus_object_data* obj, void* priv) {
    char* s = blobmsg_format_json(obj->signature, true);
    *static_cast<std::string*>(priv) = s != nullptr ? s : "";
    std::free(s);
}

class UbusObjectTest : public ::testing::Test {
protected:
    void SetUp() override {
        ubusd_ = std::getenv("LYND_UBUSD");
        if (ubusd_ == nullptr)
            GTEST_SKIP() << "LYND_UBUSD names no ubusd";
        char dir[] = "/tmp/lynd-ubus-XXXXXX";
        ASSERT_NE(nullptr, mkdtemp(dir));
        dir_ = dir;
        socket_ = dir_ + "/ubus.sock";
        start_ubusd();
        owner_ = fork();
        if (owner_ == 0)
            own(socket_.c_str());
    }
    void TearDown() override {
        if (ctx_ != nullptr)
            ubus_free(ctx_);
        stop(owner_);
        stop(daemon_);
        if (!dir_.empty()) {
            unlink(socket_.c_str());
            rmdir(dir_.c_str());
        }
    }
    static void stop(pid_t pid) {
        if (pid <= 0)
            return;
        kill(pid, SIGTERM);
        waitpid(pid, nullptr, 0);
    }
    void start_ubusd() {
        unlink(socket_.c_str());
        daemon_ = fork();
        if (daemon_ == 0) {
            execl(ubusd_, "ubusd", "-s", socket_.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
        struct stat st {};
        for (int i = 0; i < 100 && stat(socket_.c_str(), &st) != 0; i++)
            usleep(20000);
    }
    // Connects (anew) and finds the object, waiting up to 3 s for it.
    uint32_t find() {
        if (ctx_ != nullptr)
            ubus_free(ctx_);
        ctx_ = nullptr;
        uint32_t id = 0;
        for (int i = 0; i < 150; i++, usleep(20000)) {
            if (ctx_ == nullptr)
                ctx_ = ubus_connect(socket_.c_str());
            if (ctx_ != nullptr && ubus_lookup_id(ctx_, "lynd-test", &id) == 0)
                return id;
        }
        ADD_FAILURE() << "the object never appeared";
        return 0;
    }
    int call(uint32_t id, const char* method, blob_buf* args, std::string* reply) {
        blob_buf empty{};
        blob_buf_init(&empty, 0);
        int rc = ubus_invoke(ctx_, id, method, (args != nullptr ? args : &empty)->head, on_data, reply, 2000);
        blob_buf_free(&empty);
        return rc;
    }

    const char* ubusd_ = nullptr;
    std::string dir_, socket_;
    pid_t daemon_ = -1, owner_ = -1;
    ubus_context* ctx_ = nullptr;
};

// A number at a dotted path of member names and array indices.
int64_t member(const std::string& json, const std::string& path) {
    json_object* doc = json_tokener_parse(json.c_str());
    json_object* cur = doc;
    size_t pos = 0;
    while (cur != nullptr && pos < path.size()) {
        size_t dot = path.find('.', pos);
        std::string k = path.substr(pos, dot == std::string::npos ? std::string::npos : dot - pos);
        cur = json_object_is_type(cur, json_type_array) ? json_object_array_get_idx(cur, std::stoul(k))
                                                          : json_object_object_get(cur, k.c_str());
        pos = dot == std::string::npos ? path.size() : dot + 1;
    }
    int64_t v = cur != nullptr ? json_object_get_int64(cur) : INT64_MIN;
    json_object_put(doc);
    return v;
}

TEST_F(UbusObjectTest, RepliesArriveAsBlobmsgTablesWithTheirTypes) {
    uint32_t id = find();
    std::string reply;
    ASSERT_EQ(UBUS_STATUS_OK, call(id, "info", nullptr, &reply));
    EXPECT_NE(std::string::npos, reply.find("\"name\":\"lynd\"")) << reply;
    EXPECT_EQ(-5, member(reply, "small"));
    EXPECT_EQ(int64_t{1} << 40, member(reply, "big"));
    EXPECT_EQ(1, member(reply, "on"));
    EXPECT_EQ(1, member(reply, "list.0.n"));

    blob_buf args{};
    blob_buf_init(&args, 0);
    blobmsg_add_string(&args, "mac", "02:00:00:00:00:01");
    reply.clear();
    EXPECT_EQ(UBUS_STATUS_OK, call(id, "echo", &args, &reply));
    EXPECT_EQ("{\"mac\":\"02:00:00:00:00:01\"}", reply);
    blob_buf_init(&args, 0);
    blobmsg_add_u32(&args, "mac", 5);
    EXPECT_EQ(UBUS_STATUS_INVALID_ARGUMENT, call(id, "echo", &args, &reply));
    blob_buf_free(&args);
    EXPECT_EQ(UBUS_STATUS_NOT_FOUND, call(id, "missing", nullptr, &reply));
    EXPECT_EQ(UBUS_STATUS_METHOD_NOT_FOUND, call(id, "nothing", nullptr, &reply));
}

TEST_F(UbusObjectTest, AListingShowsEachMethodsArgumentsAndTheirTypes) {
    (void)find();
    std::string signature;
    ASSERT_EQ(0, ubus_lookup(ctx_, "lynd-test", on_lookup, &signature));
    // blobmsg type numbers: 3 string, 7 boolean
    EXPECT_EQ("{\"info\":{},\"echo\":{\"mac\":3,\"on\":7},\"missing\":{},\"last\":{}}", signature);
}

TEST_F(UbusObjectTest, TheObjectComesBackWithUbusd) {
    uint32_t id = find();
    std::string reply;
    ASSERT_EQ(UBUS_STATUS_OK, call(id, "info", nullptr, &reply));
    stop(daemon_);
    start_ubusd();
    id = find();
    EXPECT_EQ(UBUS_STATUS_OK, call(id, "info", nullptr, &reply));
}

// ubusd drops what a client wrote once it sees the client close.
TEST_F(UbusObjectTest, AReplyJustBeforeTheConnectionClosesStillArrives) {
    uint32_t id = find();
    std::string reply;
    ASSERT_EQ(UBUS_STATUS_OK, call(id, "last", nullptr, &reply));
    EXPECT_EQ("{\"restart\":true}", reply);
}

}  // namespace

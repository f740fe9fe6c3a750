// Bus rights in what the package ships or shows: no access list grants the
// daemon's object by wildcard, none grants record, and shadow is granted only
// as a web session's write right (which rpcd gives root alone unless an
// administrator hands it out). ubusd lists ("access": {object: {"methods":
// [...]}}) and rpcd lists ("read"/"write": {"ubus": {object: [...]}}) are
// both read.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <json-c/json.h>

#include "files_under.h"

namespace {

// Methods only root may call; shadow also by a web session with write rights.
const char* const kRootOnly[] = {"record", "shadow"};

bool covers(const std::string& pattern, const std::string& name) {
    if (!pattern.empty() && pattern.back() == '*')
        return name.compare(0, pattern.size() - 1, pattern, 0, pattern.size() - 1) == 0;
    return pattern == name;
}

// What is wrong with one grant of methods on object pattern; "" when nothing.
std::string check_grant(const std::string& object, json_object* methods, bool web_write) {
    if (!covers(object, "lynd"))
        return "";
    if (object != "lynd")
        return "object \"" + object + "\" grants lynd by wildcard";
    if (!json_object_is_type(methods, json_type_array))
        return "methods of lynd are no list";
    for (size_t i = 0; i < json_object_array_length(methods); i++) {
        const char* m = json_object_get_string(json_object_array_get_idx(methods, i));
        if (m == nullptr || std::strchr(m, '*') != nullptr)
            return "lynd method \"" + std::string(m != nullptr ? m : "") + "\" is a wildcard";
        for (const char* root_only : kRootOnly) {
            if (std::strcmp(m, root_only) == 0 && !(web_write && std::strcmp(m, "shadow") == 0))
                return std::string("lynd ") + root_only + " granted";
        }
    }
    return "";
}

// Walks o for "access" (ubusd) and "ubus" (rpcd) tables.
void check_tree(json_object* o, std::vector<std::string>* faults, bool in_write = false) {
    if (json_object_is_type(o, json_type_array)) {
        for (size_t i = 0; i < json_object_array_length(o); i++)
            check_tree(json_object_array_get_idx(o, i), faults, in_write);
        return;
    }
    if (!json_object_is_type(o, json_type_object))
        return;
    json_object_object_foreach(o, key, val) {
        bool ubusd = std::strcmp(key, "access") == 0, rpcd = std::strcmp(key, "ubus") == 0;
        if ((ubusd || rpcd) && json_object_is_type(val, json_type_object)) {
            json_object_object_foreach(val, object, grant) {
                json_object* methods = grant;
                if (ubusd && !json_object_object_get_ex(grant, "methods", &methods))
                    continue;
                std::string fault = check_grant(object, methods, rpcd && in_write);
                if (!fault.empty())
                    faults->push_back(fault);
            }
        }
        check_tree(val, faults, in_write || std::strcmp(key, "write") == 0);
    }
}

std::vector<std::string> faults_of(const char* text) {
    std::vector<std::string> faults;
    json_object* root = json_tokener_parse(text);
    check_tree(root, &faults);
    json_object_put(root);
    return faults;
}

TEST(ShippedRights, TheCheckFindsWhatItLooksFor) {
    struct Case {
        const char* acl;
        size_t faults;
    } cases[] = {
        {R"({"user": "mon", "access": {"lynd": {"methods": ["status", "paths", "counters"]}}})", 0},
        {R"({"user": "mon", "access": {"lynd": {"methods": ["*"]}}})", 1},
        {R"({"user": "mon", "access": {"lynd": {"methods": ["stat*"]}}})", 1},
        {R"({"user": "mon", "access": {"*": {"methods": ["status"]}}})", 1},
        {R"({"user": "mon", "access": {"ly*": {"methods": ["status"]}}})", 1},
        {R"({"user": "mon", "access": {"lynd": {"methods": ["status", "record"]}}})", 1},
        {R"({"user": "mon", "access": {"network": {"methods": ["*"]}}})", 0},
        {R"({"mon": {"read": {"ubus": {"lynd": ["shadow"]}}}})", 1},
        {R"({"mon": {"write": {"ubus": {"lynd": ["status"], "l*": ["*"]}}}})", 1},
        {R"({"web": {"write": {"ubus": {"lynd": ["shadow"]}}}})", 0},
        {R"({"web": {"write": {"ubus": {"lynd": ["record"]}}}})", 1},
        {R"({"user": "mon", "write": {"access": {"lynd": {"methods": ["shadow"]}}}})", 1},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.faults, faults_of(c.acl).size()) << c.acl;
}

TEST(ShippedRights, NoShippedOrShownFileGrantsTooMuch) {
    std::vector<std::string> files;
    files_under(std::string(LYND_SOURCE_DIR) + "/openwrt", {".json"}, &files);
    files_under(std::string(LYND_SOURCE_DIR) + "/examples", {".json"}, &files);
    bool example_seen = false;
    for (const std::string& path : files) {
        json_object* root = json_object_from_file(path.c_str());
        ASSERT_NE(nullptr, root) << path;
        std::vector<std::string> faults;
        check_tree(root, &faults);
        json_object_put(root);
        for (const std::string& f : faults)
            ADD_FAILURE() << path << ": " << f;
        example_seen |= path.find("acl.d/lynd-monitor.json") != std::string::npos;
    }
    EXPECT_TRUE(example_seen);
}

}  // namespace

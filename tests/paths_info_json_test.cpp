#include <json-c/json.h>

#include <string>

#include <gtest/gtest.h>

#include "modules/path_selection/paths_info_json.h"

namespace {

// What json-c itself writes to a file for the same rows.
std::string by_json_c(const paths_info_row* rows, size_t n) {
    json_object* a = json_object_new_array();
    for (size_t i = 0; i < n; i++) {
        json_object* o = json_object_new_object();
        json_object_object_add(o, "name", json_object_new_string(rows[i].name));
        json_object_object_add(o, "rate", json_object_new_int(static_cast<int32_t>(rows[i].rate)));
        json_object_object_add(o, "utilization", json_object_new_int(static_cast<int32_t>(rows[i].util)));
        json_object_array_add(a, o);
    }
    std::string text = json_object_to_json_string_ext(a, JSON_C_TO_STRING_PLAIN);
    json_object_put(a);
    return text;
}

std::string ours(const paths_info_row* rows, size_t n) {
    char buf[PATHS_INFO_MAX];
    size_t len = path_selection_format_paths_info(rows, n, buf, sizeof buf);
    return std::string(buf, len);
}

TEST(PathsInfoJson, SameBytesAsJsonC) {
    const paths_info_row two[] = {{"ath02", 144, 35}, {"ath12", 866, 20}};
    EXPECT_EQ("[{\"name\":\"ath12\",\"rate\":866,\"utilization\":20}]", ours(two + 1, 1));
    EXPECT_EQ("[]", ours(nullptr, 0));
    EXPECT_EQ(by_json_c(two, 2), ours(two, 2));
    // Names come from the configuration file: every byte json-c escapes.
    const paths_info_row odd[] = {{"a/\"\\\b\f\n\r\t\x01\x1f\x7f\xc3\xa9", 65535, 255}};
    EXPECT_EQ(by_json_c(odd, 1), ours(odd, 1));
}

TEST(PathsInfoJson, TooSmallABufferGivesNothing) {
    const paths_info_row worst = {"\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01\x01", 65535, 255};
    const paths_info_row five[] = {worst, worst, worst, worst, worst};
    char buf[PATHS_INFO_MAX];
    EXPECT_GT(path_selection_format_paths_info(five, 5, buf, sizeof buf), 0u);
    EXPECT_EQ(0u, path_selection_format_paths_info(five, 5, buf, 100));
}

}  // namespace

// docs/configuration.md against the daemon's key table, so the reference
// cannot drift: every key the loader knows is listed in its section with
// the type and range the loader applies, and nothing else is listed.
#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "config/config_keys.h"
#include "file_text.h"
#include "files_under.h"

namespace {

const std::string kSource = LYND_SOURCE_DIR;

struct doc_row {
    std::string name;  // the first name in the key cell
    std::string key_cell;
    std::string type;
    std::string def;
    std::string range;
};

using doc_rows = std::map<std::pair<config_section, std::string>, doc_row>;

const std::pair<const char*, config_section> kHeadings[] = {
    {"## Top level", config_section::TOP},
    {"## `bridges.NAME`", config_section::BRIDGE},
    {"## `interfaces.NAME`", config_section::INTERFACE},
    {"## `param`", config_section::PARAM},
};

std::vector<std::string> cells(const std::string& line) {
    std::vector<std::string> out;
    size_t at = 1;
    for (size_t bar; (bar = line.find('|', at)) != std::string::npos; at = bar + 1) {
        std::string c = line.substr(at, bar - at);
        c.erase(0, c.find_first_not_of(' '));
        c.erase(c.find_last_not_of(' ') + 1);
        out.push_back(c);
    }
    return out;
}

// The key tables of the document: rows under a section heading, up to the
// next heading of any level.
doc_rows read_doc(const std::string& text) {
    doc_rows rows;
    bool in_section = false;
    config_section section = config_section::TOP;
    size_t at = 0;
    while (at < text.size()) {
        size_t end = text.find('\n', at);
        std::string line = text.substr(at, end == std::string::npos ? std::string::npos : end - at);
        at = end == std::string::npos ? text.size() : end + 1;
        if (line.rfind("#", 0) == 0) {
            in_section = false;
            for (const auto& h : kHeadings)
                if (line == h.first) {
                    in_section = true;
                    section = h.second;
                }
            continue;
        }
        if (!in_section || line.rfind("| `", 0) != 0)
            continue;
        std::vector<std::string> c = cells(line);
        if (c.size() < 4)
            continue;
        size_t tick = c[0].find('`', 1);
        doc_row r{c[0].substr(1, tick - 1), c[0], c[1], c[2], c[3]};
        rows[{section, r.name}] = r;
    }
    return rows;
}

// Every "word" in quotes: a lowercase name that could be a key.
std::vector<std::string> quoted_words(const std::string& text) {
    std::vector<std::string> out;
    for (size_t at = text.find('"'); at != std::string::npos; at = text.find('"', at + 1)) {
        size_t end = at + 1;
        while (end < text.size() && (std::islower(static_cast<unsigned char>(text[end])) ||
                                     std::isdigit(static_cast<unsigned char>(text[end])) || text[end] == '_'))
            end++;
        if (end < text.size() && text[end] == '"' && end > at + 1)
            out.push_back(text.substr(at + 1, end - at - 1));
    }
    return out;
}

// The table is walked through its lookup: every quoted word in the daemon's
// sources is asked for, in every section (a per-band key by its _2g form).
std::map<std::pair<config_section, std::string>, const config_key*> daemon_keys() {
    std::map<std::pair<config_section, std::string>, const config_key*> keys;
    std::vector<std::string> files;
    files_under(kSource + "/src", {".cpp", ".h"}, &files);
    for (const std::string& file : files) {
        for (const std::string& word : quoted_words(slurp(file))) {
            for (const auto& h : kHeadings) {
                std::string name = word;
                const config_key* k = config_key_find(h.second, name.c_str());
                if (k == nullptr && (k = config_key_find(h.second, (name + "_2g").c_str())) != nullptr)
                    name += "_2g";
                if (k != nullptr)
                    keys[{h.second, name}] = k;
            }
        }
    }
    return keys;
}

std::set<std::string> type_words(config_kind kind) {
    switch (kind) {
    case config_kind::BOOL:
        return {"bool"};
    case config_kind::INT:
        return {"int"};
    case config_kind::STRING:
        return {"string"};
    case config_kind::OBJECT:
        return {"object"};
    case config_kind::ANY:
        return {"array", "object"};
    }
    return {};
}

std::string range_text(const config_key& k) {
    const std::string span = std::to_string(k.lo) + ".." + std::to_string(k.hi);
    if (k.kind != config_kind::INT)
        return "-";
    switch (k.range) {
    case config_range::AS_IS:
        return "any 32-bit";
    case config_range::CLAMP:
        return span + ", clamped";
    case config_range::LOW8:
        return span + ", modulo 256";
    case config_range::LOW8_CLAMP:
        return span + ", modulo 256 then clamped";
    case config_range::CLAMP_LOW8:
        return span + ", clamped then modulo 256";
    case config_range::SECONDS:
        return span + ", times 1000";
    case config_range::UNSIGNED:
        return "0..4294967295, unsigned";
    }
    return "?";
}

// The default as the reference writes it; by band only where bands differ.
std::string default_text(const config_key& k) {
    auto one = [&](int32_t v) { return k.kind == config_kind::BOOL ? std::string(v ? "true" : "false") : std::to_string(v); };
    if (!k.per_band || (k.def[0] == k.def[1] && k.def[1] == k.def[2]))
        return one(k.def[0]);
    if (k.def[1] == k.def[2])
        return one(k.def[0]) + " (2g), " + one(k.def[1]) + " (5g, 6g)";
    return one(k.def[0]) + " (2g), " + one(k.def[1]) + " (5g), " + one(k.def[2]) + " (6g)";
}

class DocsConfig : public ::testing::Test {
protected:
    void SetUp() override {
        doc = read_doc(slurp(kSource + "/docs/configuration.md"));
        keys = daemon_keys();
    }
    doc_rows doc;
    std::map<std::pair<config_section, std::string>, const config_key*> keys;
};

TEST_F(DocsConfig, TheWalkFindsTheTable) {
    // A walk that finds nothing would pass everything below.
    EXPECT_GT(keys.size(), 50u);
    EXPECT_GT(doc.size(), 50u);
}

TEST_F(DocsConfig, EveryKeyIsDocumentedWithItsTypeAndRange) {
    for (const auto& k : keys) {
        const std::string& name = k.first.second;
        auto row = doc.find(k.first);
        if (row == doc.end()) {
            ADD_FAILURE() << name << " is missing from docs/configuration.md";
            continue;
        }
        EXPECT_EQ(1u, type_words(k.second->kind).count(row->second.type)) << name << ": type " << row->second.type;
        EXPECT_EQ(range_text(*k.second), row->second.range) << name;
        // A key its owner loads documents its own default (by type, by another key).
        if (k.second->store != nullptr) {
            EXPECT_EQ(default_text(*k.second), row->second.def) << name;
        }
        if (k.second->per_band) {
            EXPECT_NE(std::string::npos, row->second.key_cell.find("`_5g`, `_6g`")) << name << ": all three bands";
        }
    }
}

TEST_F(DocsConfig, EveryDocumentedKeyIsKnown) {
    for (const auto& row : doc)
        EXPECT_EQ(1u, keys.count(row.first)) << row.first.second << " is documented but not a key of its section";
}

}  // namespace

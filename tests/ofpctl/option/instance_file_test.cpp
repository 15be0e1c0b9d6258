#include <algorithm>
#include <random>
#include <string>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include "option/instance_file.h"

namespace ofpctl {
namespace {

const std::string toml = "instance = 7 # the id\n"
                         "active = true\n"
                         "description = \"edge \\u00e4\"\n"
                         "echo-interval = 0x10\n"
                         "qinq = false\n"
                         "flow-tables = [\"10:2\", 11]\n"
                         "management-vlans = []\n"
                         "ports = [\"GE1/0/1\", 2]\n"
                         "[[controller]]\n"
                         "id = 3\n"
                         "address = \"192.0.2.1\"\n"
                         "port = 6653\n";

const std::string json = R"({"instance": 7, "active": true, "description": "edge ä",
 "echo-interval": 16, "qinq": false, "flow-tables": ["10:2", 11], "management-vlans": [],
 "ports": ["GE1/0/1", 2], "controller": [{"id": 3, "address": "192.0.2.1", "port": 6653}]})";

std::vector<FileError> errors(const std::string &text)
{
    auto plan = read_instance_plan(text);
    return std::holds_alternative<InstancePlan>(plan) ? std::vector<FileError>{}
                                                      : std::get<std::vector<FileError>>(plan);
}

TEST(InstanceFile, TomlAndJsonSayTheSame)
{
    for (const std::string &text : {toml, json}) {
        SCOPED_TRACE(text);
        auto parsed = read_instance_plan(text);
        ASSERT_TRUE(std::holds_alternative<InstancePlan>(parsed)) << errors(text).front().what;
        const auto &plan = std::get<InstancePlan>(parsed);
        EXPECT_EQ(plan.id, 7);
        EXPECT_EQ(plan.active, true);
        ASSERT_EQ(plan.options.size(), 5U);
        EXPECT_EQ(plan.options[0].row->name, "description");
        EXPECT_EQ(plan.options[0].value, Value(std::string("edge ä")));
        EXPECT_EQ(plan.options[1].row->name, "echo-interval");
        EXPECT_EQ(plan.options[1].value, Value(uint64_t{16}));
        EXPECT_EQ(plan.options[2].value, Value(std::vector<TableKind>{{10, 2}, {11, 2}}));
        EXPECT_EQ(plan.options[3].value, Value(VlanSet{})) << "an empty list is none";
        ASSERT_EQ(plan.ports->size(), 2U);
        EXPECT_EQ(plan.ports->at(1).name, "GE1/0/2");
        ASSERT_EQ(plan.controllers->size(), 1U);
        EXPECT_EQ(plan.controllers->front().id, 3);
        EXPECT_EQ(plan.controllers->front().settings.size(), 2U);
    }
}

TEST(InstanceFile, WhatIsNotSaidIsNotPlanned)
{
    auto parsed = read_instance_plan("instance = 1\n");
    const auto &plan = std::get<InstancePlan>(parsed);
    EXPECT_FALSE(plan.active || plan.controllers || plan.ports);
    EXPECT_TRUE(plan.options.empty());
}

TEST(InstanceFile, ErrorsHaveTheirPlace)
{
    const std::vector<FileError> wrong =
        errors("instance = 1\nunknown = 1\nqinq = 'perhaps'\n[[controller]]\nid = 1\n");
    ASSERT_EQ(wrong.size(), 3U);
    EXPECT_EQ(wrong[0].line, 2U);
    EXPECT_EQ(wrong[0].column, 1U) << "of the name";
    EXPECT_EQ(wrong[1].line, 3U);
    EXPECT_EQ(wrong[1].column, 8U) << "of the value";
    EXPECT_EQ(wrong[2].line, 4U);
    EXPECT_EQ(wrong[2].what, "controller: address is missing");
}

// Whatever a file holds, it is a plan or a list of errors within it.
TEST(InstanceFile, AnythingIsReadOrRefused)
{
    std::mt19937 random(11);
    const std::string letters = "{}[]\"'=,:\n #0123456789.-_abctrue\\\t\xc3\xff";
    for (int round = 0; round < 8000; round++) {
        std::string text = random() % 2 == 0 ? toml : json;
        for (auto change = random() % 6; change > 0; change--) {
            const std::size_t at = random() % text.size();
            const std::size_t length = random() % 20;
            if (random() % 3 == 0)
                text.erase(at, length);
            else if (random() % 2 == 0)
                text.insert(at, text.substr(random() % text.size(), length));
            else
                text[at] = letters[random() % letters.size()];
            if (text.empty())
                text = "{";
        }
        const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
        for (const FileError &error : errors(text)) {
            ASSERT_FALSE(error.what.empty()) << text;
            ASSERT_LE(error.line, lines + 1) << text;
            ASSERT_GE(error.column, 1U) << text;
        }
    }
}

} // namespace
} // namespace ofpctl

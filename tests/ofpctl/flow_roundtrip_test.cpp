// What is printed loads again as the same rule, whatever the rule is.
#include <string>

#include <gtest/gtest.h>

#include "flow/flow_identity.h"
#include "flow/flow_json.h"
#include "flow_record.h"

namespace flow_test {
namespace {

using namespace ofpctl;

constexpr int rounds = 5000;

TEST(FlowRoundTrip, TextLoadsAgainToTheSameItem)
{
    Random random(1);
    for (int i = 0; i < rounds; ++i) {
        const auto record = random_record(random);
        const std::string line = format_flow(record->item);
        const FlowItemPtr again = parsed(line);
        ASSERT_TRUE(again) << line;
        ASSERT_EQ(carried(*again), carried(record->item)) << line;
        ASSERT_EQ(format_flow(*again), line);
        ASSERT_TRUE(same_rule(*again, record->item)) << line;
        ASSERT_TRUE(same_actions(*again, record->item)) << line;
        ASSERT_EQ(rule_hash(*again), rule_hash(record->item)) << line;
    }
}

TEST(FlowRoundTrip, JsonLoadsAgainToTheSameItem)
{
    Random random(2);
    for (int i = 0; i < rounds / 4; ++i) {
        const auto record = random_record(random);
        const std::string object = flow_to_json(record->item);
        FlowResult again = parse_flow_json(object, ParseMode::program);
        if (const auto *error = std::get_if<TextError>(&again))
            FAIL() << object << "\n" << to_string(*error);
        ASSERT_EQ(carried(*std::get<Flow>(again).item), carried(record->item)) << object;
    }
}

// Lines with a few characters changed, dropped or doubled: they load or they do not, and those that
// load are printed in a form that stays.
TEST(FlowRoundTrip, DamagedLinesLoadToSomethingThatStaysOrNotAtAll)
{
    Random random(3);
    constexpr std::string_view characters = ",=/:()\"#-0x19afzt \\\n\t\x80";
    int loaded = 0;
    for (int i = 0; i < rounds; ++i) {
        std::string line = format_flow(random_record(random)->item);
        for (uint64_t n = 1 + random() % 3; n > 0; --n) {
            const std::size_t at = random() % line.size();
            if (random() % 3 == 0)
                line.erase(at, 1 + random() % 4);
            else
                line[at] = characters[random() % characters.size()];
        }
        const FlowResult result = parse_flow(line, ParseMode::program);
        if (const auto *error = std::get_if<TextError>(&result)) {
            ASSERT_GE(error->column, 1U) << line;
            ASSERT_LE(error->column + error->length, line.size() + 2) << line;
            ASSERT_FALSE(error->message.empty()) << line;
            continue;
        }
        ++loaded;
        const std::string printed = format_flow(*std::get<Flow>(result).item);
        ASSERT_EQ(format_flow(*parsed(printed)), printed) << line;
    }
    EXPECT_GT(loaded, rounds / 100);
}

TEST(FlowRoundTrip, DamagedJsonNeverHarms)
{
    Random random(4);
    constexpr std::string_view characters = ",:{}[]\"0-e\\t \x80";
    for (int i = 0; i < rounds / 4; ++i) {
        std::string text = flow_to_json(random_record(random)->item);
        for (uint64_t n = 1 + random() % 3; n > 0; --n)
            text[random() % text.size()] = characters[random() % characters.size()];
        const FlowResult result = parse_flow_json(text, ParseMode::program);
        if (const auto *error = std::get_if<TextError>(&result)) {
            ASSERT_FALSE(error->message.empty()) << text;
            ASSERT_LE(error->column, text.size() + 1) << text;
        }
    }
}

} // namespace
} // namespace flow_test

#include "frame/arguments.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "frame/failure.h"
#include "frame/verb.h"

namespace ofpctl {
namespace {

constexpr OptionRow rows[] = {
    {.name = "file", .letter = 'f', .kind = Kind::file, .value = "FILE", .repeats = true},
    {.name = "id", .kind = Kind::number, .value = "N", .fallback = "1", .least = 1, .most = 7},
    {.name = "mode", .kind = Kind::word, .value = "MODE", .fallback = "0", .words = "0|1"},
    {.name = "strict"},
};
constexpr Verb verb{.name = "load",
                    .run = nullptr,
                    .help = "Loads.",
                    .operands = {"THING...", Kind::text, 0, 2},
                    .options = rows};
const Noun noun{"flow", "Flow rules.", std::span(&verb, 1)};

Arguments parse(const Words &words) { return parse_arguments(noun, verb, words); }

std::string refusal_of(const Words &words)
{
    try {
        parse(words);
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.status, 2);
        return failure.message;
    }
    return "accepted";
}

TEST(Arguments, HaveTheirFallbacksWhenNotGiven)
{
    const Arguments arguments = parse({});
    EXPECT_FALSE(arguments.given("id"));
    EXPECT_EQ(arguments.number("id"), 1U);
    EXPECT_EQ(arguments.text("mode"), "0");
    EXPECT_EQ(arguments.text("file"), "");
    EXPECT_FALSE(arguments.given("strict"));
    EXPECT_EQ(arguments.number("timeout"), 30U) << "the options of every command are there too";
}

TEST(Arguments, MixOptionsAndOperands)
{
    const Arguments arguments =
        parse({"a", "--id=3", "-f", "x", "--strict", "b", "--file", "y", "--json"});
    EXPECT_EQ(arguments.operands(), (Words{"a", "b"}));
    EXPECT_EQ(arguments.number("id"), 3U);
    EXPECT_EQ(arguments.all("file"), (Words{"x", "y"}));
    EXPECT_TRUE(arguments.given("strict"));
    EXPECT_TRUE(arguments.given("json"));
}

TEST(Arguments, TakeOneValueForEachOption)
{
    EXPECT_EQ(parse({"-f", "x", "y"}).operands(), (Words{"y"}));
}

TEST(Arguments, AMinusIsAnOperand) { EXPECT_EQ(parse({"-"}).operands(), (Words{"-"})); }

TEST(Arguments, AfterTwoMinusesAllAreOperands)
{
    EXPECT_EQ(parse({"--strict", "--", "--id", "-x"}).operands(), (Words{"--id", "-x"}));
}

TEST(Arguments, NumbersMayBeHexadecimal) { EXPECT_EQ(parse({"--id", "0x7"}).number("id"), 7U); }

TEST(Arguments, RefusalsSayWhatWouldBeRight)
{
    EXPECT_EQ(refusal_of({"--id", "8"}), "--id: \"8\" is not a number from 1 to 7");
    EXPECT_EQ(refusal_of({"--id", "0"}), "--id: \"0\" is not a number from 1 to 7");
    EXPECT_EQ(refusal_of({"--id", "-1"}), "--id: \"-1\" is not a number from 1 to 7");
    EXPECT_EQ(refusal_of({"--id", "3x"}), "--id: \"3x\" is not a number from 1 to 7");
    EXPECT_EQ(refusal_of({"--id", ""}), "--id: \"\" is not a number from 1 to 7");
    EXPECT_EQ(refusal_of({"--id", "99999999999"}),
              "--id: \"99999999999\" is not a number from 1 to 7");
    EXPECT_EQ(refusal_of({"--mode", "2"}), "--mode: \"2\" is none of 0, 1");
    EXPECT_EQ(refusal_of({"--strcit"}), "--strcit: no such option; did you mean --strict?");
    EXPECT_EQ(refusal_of({"--id", "1", "--id", "2"}), "--id is given 2 times; once is enough");
    EXPECT_EQ(refusal_of({"a", "b", "c"}), "\"c\": one thing too many");
}

TEST(Arguments, AMissingValueIsNoValue)
{
    EXPECT_TRUE(refusal_of({"--id"}).starts_with("a value is missing: --id"));
}

TEST(Arguments, AFlagTakesNoValue) { EXPECT_NE(refusal_of({"--strict=no"}), "accepted"); }

TEST(Arguments, AskingForWhatTheRowLacksIsAMistakeOfTheProgram)
{
    EXPECT_THROW(static_cast<void>(parse({}).text("nothing")), std::out_of_range);
}

TEST(CommandLine, SplitsBeforeTheNoun)
{
    const Words words{"--json", "--timeout", "5", "flow", "--json", "load", "x"};
    const CommandLine line = split_command_line(words);
    EXPECT_EQ(line.common, (Words{"--json", "--timeout", "5"}));
    EXPECT_EQ(line.rest, (Words{"flow", "--json", "load", "x"}));
}

TEST(CommandLine, LeavesUnknownOptionsToWhoeverKnowsThem)
{
    EXPECT_EQ(split_command_line(Words{"--nonsense", "flow"}).rest, (Words{"--nonsense", "flow"}));
}

} // namespace
} // namespace ofpctl

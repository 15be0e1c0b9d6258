// What every row of the verb table must be, whatever it is for.
#include <algorithm>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "frame/help.h"
#include "frame/suggest.h"
#include "frame/verb.h"

namespace ofpctl {
namespace {

template <class Visit>
void each_verb(Visit visit)
{
    for (const Noun &noun : nouns()) {
        for (const Verb &verb : noun.verbs) {
            SCOPED_TRACE(std::string(noun.name) + " " + std::string(verb.name));
            visit(noun, verb);
        }
    }
}

TEST(VerbTable, NamesAreDistinct)
{
    std::set<std::string_view> seen;
    for (const Noun &noun : nouns()) {
        EXPECT_TRUE(seen.insert(noun.name).second) << noun.name;
        std::set<std::string_view> verbs;
        for (const Verb &verb : noun.verbs)
            EXPECT_TRUE(verbs.insert(verb.name).second) << noun.name << " " << verb.name;
    }
}

TEST(VerbTable, EveryCommandRunsAndHasHelpAndExamples)
{
    each_verb([](const Noun &noun, const Verb &verb) {
        EXPECT_NE(verb.run, nullptr);
        EXPECT_TRUE(verb.help.ends_with('.'));
        EXPECT_FALSE(verb.help.starts_with(' '));
        ASSERT_FALSE(verb.examples.empty());
        const std::string call = "ofpctl " + std::string(noun.name) + " " + std::string(verb.name);
        for (const Example &example : verb.examples)
            EXPECT_NE(example.command.find(call), example.command.npos) << example.command;
    });
}

TEST(VerbTable, OptionsAreDistinctAndNoneHidesACommonOne)
{
    each_verb([](const Noun &, const Verb &verb) {
        std::set<std::string_view> names;
        std::set<char> letters;
        for (const std::span<const OptionRow> rows : {common_options(), verb.options}) {
            for (const OptionRow &option : rows) {
                EXPECT_TRUE(names.insert(option.name).second) << option.name;
                EXPECT_TRUE(option.letter == 0 || letters.insert(option.letter).second)
                    << option.name;
            }
        }
    });
}

TEST(VerbTable, AnOptionIsDescribedAsItsKindWants)
{
    each_verb([](const Noun &, const Verb &verb) {
        for (const OptionRow &option : verb.options) {
            SCOPED_TRACE(option.name);
            EXPECT_FALSE(option.help.empty());
            EXPECT_EQ(option.kind == Kind::flag, option.value.empty());
            EXPECT_EQ(option.kind == Kind::word, !option.words.empty());
            EXPECT_EQ(option.kind == Kind::number, option.most > 0);
        }
    });
}

TEST(VerbTable, FallbacksAreValuesTheOptionTakes)
{
    each_verb([](const Noun &, const Verb &verb) {
        for (const OptionRow &option : verb.options) {
            if (option.fallback.empty())
                continue;
            SCOPED_TRACE(option.name);
            if (option.kind == Kind::word) {
                const auto words = split(option.words, '|');
                EXPECT_NE(std::find(words.begin(), words.end(), option.fallback), words.end());
            } else if (option.kind == Kind::number) {
                const auto number = std::stoull(std::string(option.fallback));
                EXPECT_GE(number, option.least);
                EXPECT_LE(number, option.most);
            }
        }
    });
}

TEST(Help, NoLineIsWiderThanATerminal)
{
    const auto narrow = [](const std::string &text) {
        // Examples are commands: they are not broken.
        const std::string prose = text.substr(0, text.find("\nExamples:"));
        for (const std::string_view line : split(prose, '\n'))
            EXPECT_LE(line.size(), 80U) << line;
    };
    narrow(program_help());
    for (const Noun &noun : nouns())
        narrow(noun_help(noun));
    each_verb([&](const Noun &noun, const Verb &verb) { narrow(verb_help(noun, verb)); });
}

TEST(Wrap, BreaksBetweenWords)
{
    EXPECT_EQ(wrap("aa bb cc", 2, 7), "  aa bb\n  cc\n");
    EXPECT_EQ(wrap("abcdefgh", 2, 4), "  abcdefgh\n") << "a word is not broken";
    EXPECT_EQ(wrap("a\nb", 0), "a\nb\n");
}

} // namespace
} // namespace ofpctl

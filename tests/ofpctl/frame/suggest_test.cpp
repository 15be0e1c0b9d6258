#include "frame/suggest.h"

#include <gtest/gtest.h>

namespace ofpctl {
namespace {

constexpr std::string_view verbs[] = {"add", "mod", "load", "replace", "show"};

TEST(Split, EndsAtEachSeparator)
{
    EXPECT_EQ(split("a|b|c", '|'), (std::vector<std::string_view>{"a", "b", "c"}));
    EXPECT_EQ(split("a", '|'), (std::vector<std::string_view>{"a"}));
    EXPECT_TRUE(split("", '|').empty());
}

TEST(Nearest, FindsTheWordThatWasMeant)
{
    EXPECT_EQ(nearest("lod", verbs), "load");
    EXPECT_EQ(nearest("repalce", verbs), "replace");
    EXPECT_EQ(nearest("sh", verbs), "show") << "a beginning is as good as the word";
}

TEST(Nearest, AmongEqualsPrefersTheSameFirstLetter)
{
    constexpr std::string_view both[] = {"mod", "load"};
    EXPECT_EQ(nearest("lod", both), "load");
    EXPECT_EQ(nearest("mad", both), "mod");
}

TEST(Nearest, SuggestsNothingThatIsFarOff)
{
    EXPECT_EQ(nearest("xyzzy", verbs), "");
    EXPECT_EQ(nearest("", verbs), "");
    EXPECT_EQ(nearest(std::string(5000, 'a'), verbs), "");
}

TEST(OneOf, ListsTheWordsWhenNoneIsNear)
{
    EXPECT_EQ(one_of("lod", verbs), "did you mean load?");
    EXPECT_EQ(one_of("xyzzy", verbs), "one of add, mod, load, replace, show");
}

} // namespace
} // namespace ofpctl

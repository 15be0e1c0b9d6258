#include "flow/nearest.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using namespace ofpctl;

TEST(Nearest, CountsInsertedDroppedChangedAndSwappedLetters)
{
    EXPECT_EQ(distance("", ""), 0U);
    EXPECT_EQ(distance("", "abc"), 3U);
    EXPECT_EQ(distance("abc", "abc"), 0U);
    EXPECT_EQ(distance("abc", "ABC"), 0U);
    EXPECT_EQ(distance("abc", "abd"), 1U);
    EXPECT_EQ(distance("abc", "acb"), 1U);
    EXPECT_EQ(distance("abc", "ab"), 1U);
    EXPECT_EQ(distance("kitten", "sitting"), 3U);
    EXPECT_EQ(distance(std::string(100, 'a'), "a"), 100U);
}

TEST(Nearest, SuggestsOnlyWhatIsNear)
{
    const auto nearest = [](std::string_view word) {
        Nearest best(word);
        for (const std::string_view candidate : {"output", "group", "drop"})
            best.offer(candidate);
        return std::string(best.word());
    };
    EXPECT_EQ(nearest("outptu"), "output");
    EXPECT_EQ(nearest("grup"), "group");
    EXPECT_EQ(nearest("xyz"), "");
    EXPECT_EQ(nearest(""), "");
}

} // namespace

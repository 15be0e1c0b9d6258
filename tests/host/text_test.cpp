#include <cstring>

#include <gtest/gtest.h>

#include "ofp/platform.h"

namespace {

TEST(Scnprintf, ReturnsTheCharactersStored)
{
    char text[8];
    EXPECT_EQ(scnprintf(text, sizeof text, "inst%u", 42u), 6u);
    EXPECT_STREQ(text, "inst42");
    EXPECT_EQ(scnprintf(text, sizeof text, "%s", "0123456"), 7u);
    EXPECT_EQ(scnprintf(text, sizeof text, "%s", "01234567"), 7u);
    EXPECT_STREQ(text, "0123456");
    EXPECT_EQ(scnprintf(text, 1, "abc"), 0u);
    EXPECT_STREQ(text, "");
}

TEST(Scnprintf, NoRoomWritesNothing)
{
    char text[2] = "x";
    EXPECT_EQ(scnprintf(text, 0, "abc"), 0u);
    EXPECT_STREQ(text, "x");
    EXPECT_EQ(scnprintf(nullptr, 0, "abc"), 0u);
}

TEST(Strlcpy, TerminatesAndTellsTheWholeLength)
{
    char text[5] = "####";
    EXPECT_EQ(strlcpy(text, "abc", sizeof text), 3u);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(strlcpy(text, "abcdefgh", sizeof text), 8u);
    EXPECT_STREQ(text, "abcd");
    EXPECT_EQ(strlcpy(text, "xyz", 1), 3u);
    EXPECT_STREQ(text, "");
    text[0] = 'k';
    EXPECT_EQ(strlcpy(text, "xyz", 0), 3u);
    EXPECT_EQ(text[0], 'k');
}

} // namespace

#include "verbs/smooth_marker.h"

#include <cstdlib>
#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ofpctl {
namespace {

struct SmoothMarkerTest : testing::Test {
    SmoothMarkerTest()
    {
        char name[] = "/tmp/ofpctl-marker-XXXXXX";
        EXPECT_NE(mkdtemp(name), nullptr);
        folder = name;
        setenv("OFP_RUNTIME_DIR", name, 1);
    }
    ~SmoothMarkerTest() override
    {
        unlink((folder + "/smooth-4096-1").c_str());
        EXPECT_EQ(rmdir(folder.c_str()), 0) << "nothing else is left behind";
    }

    std::string folder;
};

TEST_F(SmoothMarkerTest, IsReadAsItWasWritten)
{
    const SmoothMarker marker{.mode = 1, .agent = 77, .agent_start = 123456789012};
    write_marker(4096, 1, marker);
    const auto read = read_marker(4096, 1);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->mode, 1U);
    EXPECT_TRUE(same_agent(*read, marker));
}

TEST_F(SmoothMarkerTest, BelongsToOneClientAndPeriod)
{
    write_marker(4096, 1, {.mode = 0, .agent = 77, .agent_start = 1});
    EXPECT_FALSE(read_marker(4096, 2));
    EXPECT_FALSE(read_marker(4097, 1));
}

TEST_F(SmoothMarkerTest, IsGoneWhenRemoved)
{
    write_marker(4096, 1, {.mode = 0, .agent = 77, .agent_start = 1});
    remove_marker(4096, 1);
    EXPECT_FALSE(read_marker(4096, 1));
    EXPECT_NO_THROW(remove_marker(4096, 1));
}

TEST_F(SmoothMarkerTest, OneThatIsCutShortCountsAsNone)
{
    for (const char *text : {"", "77", "77 12", "77 12 x", "seventy"}) {
        std::ofstream(folder + "/smooth-4096-1") << text;
        EXPECT_FALSE(read_marker(4096, 1)) << text;
    }
}

TEST(SameAgent, IsTheSameProcessAndNotOneThatTookItsNumber)
{
    const SmoothMarker marker{.mode = 0, .agent = 77, .agent_start = 5};
    EXPECT_TRUE(same_agent(marker, {.mode = 1, .agent = 77, .agent_start = 5}));
    EXPECT_FALSE(same_agent(marker, {.mode = 0, .agent = 77, .agent_start = 6}));
    EXPECT_FALSE(same_agent(marker, {.mode = 0, .agent = 78, .agent_start = 5}));
}

} // namespace
} // namespace ofpctl

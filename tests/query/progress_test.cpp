#include "query/progress.h"

#include <gtest/gtest.h>

using ofp::Course;
using ofp::Patience;

namespace {

// The steps it takes to notice a circle of the given length, entered after the given way.
uint64_t steps_until_noticed(uint64_t way, uint64_t circle)
{
    Course<uint64_t> course(0);
    for (uint64_t step = 1;; ++step) {
        const uint64_t key = step <= way ? step : way + 1 + (step - way - 1) % circle;
        if (!course.leads_on(key))
            return step;
    }
}

} // namespace

TEST(Course, FollowsKeysThatNeverComeAgain)
{
    Course<uint32_t> course(0);
    for (uint32_t key = 100'000; key > 0; --key)
        ASSERT_TRUE(course.leads_on(key));
}

TEST(Course, NoticesAKeyThatStays)
{
    Course<uint32_t> course(7);
    EXPECT_FALSE(course.leads_on(7));
    EXPECT_TRUE(course.leads_on(8));
    EXPECT_FALSE(course.leads_on(8));
}

TEST(Course, NoticesEveryCircleSoon)
{
    for (uint64_t way : {0u, 1u, 2u, 10u, 1000u})
        for (uint64_t circle : {1u, 2u, 3u, 10u, 1000u}) {
            const uint64_t steps = steps_until_noticed(way, circle);
            EXPECT_GT(steps, way + circle - (way == 0)) << way << ' ' << circle;
            EXPECT_LE(steps, 4 * (way + circle) + 2) << way << ' ' << circle;
        }
}

TEST(Patience, EndsAtTheSixteenthIdleOneInARow)
{
    Patience patience;
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 15; ++i)
            EXPECT_TRUE(patience.allows(false));
        EXPECT_TRUE(patience.allows(true));
    }
    for (int i = 0; i < 15; ++i)
        EXPECT_TRUE(patience.allows(false));
    EXPECT_FALSE(patience.allows(false));
}

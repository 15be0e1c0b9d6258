#include "daemon/outbox.h"

#include <array>

#include <gtest/gtest.h>

namespace agent {
namespace {

std::vector<uint8_t> bytes(size_t count, uint8_t value)
{
    return std::vector<uint8_t>(count, value);
}

TEST(Outbox, GivesDatagramsInTheOrderInWhichTheyCame)
{
    Outbox out;
    out.append(bytes(3, 1));
    out.append(bytes(5, 2));
    out.append(bytes(1, 3));

    std::array<Bytes, 2> front;
    ASSERT_EQ(out.front(front), 2u);
    EXPECT_EQ(front[0].size(), 3u);
    EXPECT_EQ(front[1].size(), 5u);
    EXPECT_EQ(front[1][4], 2);
    out.drop(2);
    ASSERT_EQ(out.front(front), 1u);
    EXPECT_EQ(front[0][0], 3);
    out.drop(1);
    EXPECT_TRUE(out.empty());
    EXPECT_EQ(out.front(front), 0u);
}

TEST(Outbox, AppendsWithoutMovingOnceRoomWasReserved)
{
    Outbox out;
    out.reserve(100, 100 * 76);
    out.append(bytes(76, 0));
    std::array<Bytes, 1> first;
    out.front(first);
    const uint8_t *const before = first[0].data();
    for (int i = 1; i < 100; ++i) {
        out.append(bytes(76, 0));
    }
    out.front(first);
    EXPECT_EQ(first[0].data(), before);
}

TEST(Outbox, RollsBackToWhatStoodBeforeAlsoAfterSomeWereSent)
{
    Outbox out;
    out.append(bytes(4, 1));
    out.append(bytes(4, 2));
    out.drop(1);
    const Outbox::Mark before = out.mark();
    out.reserve(1000, 100'000); // gives back the room of what was sent
    out.append(bytes(4, 3));
    out.begin();
    out.extend(10);
    out.rollback(before);

    std::array<Bytes, 4> front;
    ASSERT_EQ(out.front(front), 1u);
    EXPECT_EQ(front[0][0], 2);
    EXPECT_EQ(out.datagrams(), 1u);
}

TEST(Outbox, KeepsWhatWaitsWhileThousandsPassThrough)
{
    Outbox out;
    uint8_t next = 0;
    uint8_t expected = 0;
    for (int i = 0; i < 10'000; ++i) {
        out.append(bytes(20, next++));
        out.append(bytes(20, next++));
        std::array<Bytes, 1> first;
        out.front(first);
        ASSERT_EQ(first[0][19], expected++);
        out.drop(1);
        if (i % 100 == 99) {
            while (!out.empty()) {
                out.front(first);
                ASSERT_EQ(first[0][0], expected++);
                out.drop(1);
            }
        }
    }
    EXPECT_EQ(out.bytes(), 0u);
}

} // namespace
} // namespace agent

#include "switch/fixture.h"

namespace {

using namespace openflow;

class PeriodTest : public SwitchTest {};

TEST_F(PeriodTest, EndRemovesWhatWasNotProgrammedSinceItWasOpened)
{
    for (uint32_t port = 1; port <= 4; port++) {
        ASSERT_FALSE(send({.match = in_port(port)}));
    }
    ASSERT_FALSE(send({.table = 7, .match = in_port(1)}));
    ASSERT_TRUE(switch_.open_period(CLIENT, 5));
    ASSERT_FALSE(send({.match = in_port(2)}));                                 // programmed again
    ASSERT_FALSE(send({.command = OFPFC_MODIFY_STRICT, .match = in_port(3)})); // likewise
    ASSERT_FALSE(send({.match = in_port(8)}));                                 // new
    EXPECT_EQ(switch_.close_period(CLIENT, 5), 3U);
    EXPECT_EQ(ids(), (std::vector<uint32_t>{2, 3, 5}));
    EXPECT_EQ(rules(CLIENT, 7), 0U);
}

TEST_F(PeriodTest, ARefusedRuleIsNotProgrammed)
{
    ASSERT_FALSE(send({.match = in_port(1)}));
    ASSERT_TRUE(switch_.open_period(CLIENT, 5));
    EXPECT_TRUE(
        send({.match = in_port(1), .instructions = build::write_actions({build::output(0)})}));
    EXPECT_EQ(switch_.close_period(CLIENT, 5), 1U);
}

TEST_F(PeriodTest, OpenedTwiceIsOpenedOnce)
{
    ASSERT_TRUE(switch_.open_period(CLIENT, 5));
    ASSERT_FALSE(send({.match = in_port(1)}));
    ASSERT_TRUE(switch_.open_period(CLIENT, 5)); // confirms it; the rule stays programmed
    EXPECT_EQ(switch_.close_period(CLIENT, 5), 0U);
    EXPECT_EQ(rules(), 1U);
    EXPECT_EQ(switch_.close_period(CLIENT, 5), 0U);
}

TEST_F(PeriodTest, SeveralAreOpenAtOnce)
{
    ASSERT_FALSE(send({.match = in_port(1)}));
    ASSERT_TRUE(switch_.open_period(CLIENT, 1));
    ASSERT_FALSE(send({.match = in_port(2)}));
    ASSERT_TRUE(switch_.open_period(CLIENT, 2));
    ASSERT_FALSE(send({.match = in_port(3)}));
    EXPECT_EQ(switch_.close_period(CLIENT, 1), 1U);
    EXPECT_EQ(ids(), (std::vector<uint32_t>{2, 3}));
    EXPECT_EQ(switch_.close_period(CLIENT, 2), 1U);
    EXPECT_EQ(ids(), std::vector<uint32_t>{3});
}

TEST_F(PeriodTest, BelongsToItsClient)
{
    ASSERT_FALSE(send({.match = in_port(1)}, CLIENT));
    ASSERT_FALSE(send({.match = in_port(1)}, OTHER));
    ASSERT_TRUE(switch_.open_period(CLIENT, 1));
    EXPECT_EQ(switch_.close_period(OTHER, 1), 0U);
    EXPECT_EQ(rules(OTHER), 1U);
    EXPECT_EQ(switch_.close_period(CLIENT, 1), 1U);
    EXPECT_EQ(rules(OTHER), 1U);
}

TEST_F(PeriodTest, ThatIsNotOpenRemovesNothing)
{
    EXPECT_EQ(switch_.close_period(CLIENT, 1), 0U);
    ASSERT_FALSE(send({.match = in_port(1)}));
    EXPECT_EQ(switch_.close_period(CLIENT, 1), 0U);
    EXPECT_EQ(rules(), 1U);
}

} // namespace

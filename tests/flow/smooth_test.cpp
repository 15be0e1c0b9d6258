#include "flow/smooth.h"

#include <cerrno>

#include "double/sweep.h"
#include "flow/rules.h"

using namespace test;

// The period outlasts a test: what opens or refuses one runs in a process of its own.
namespace {

constexpr uint32_t ok = OFP_RC_OK;
constexpr uint32_t failed = OFP_RC_FAILED;

class Smooth : public FlowTest {};

uint32_t start(uint16_t client, uint32_t id, uint32_t mode)
{
    platform.reply(barrier_reply(0));
    return OFP_SmoothStart(client, id, mode);
}

bool is_open(uint32_t id, uint32_t mode)
{
    const OfpClientHead head = ofp::client_head(4096);
    return ofp::smooth_is_open() && head.smooth_id == id && head.smooth_mode == mode;
}

} // namespace

TEST(SmoothPeriod, StartOpensItWithItsHead)
{
    in_fresh_process([] {
        EXPECT_FALSE(ofp::smooth_is_open());
        EXPECT_EQ(start(4099, 0, 0), ok);
        EXPECT_TRUE(is_open(0, 0));
        ASSERT_EQ(platform.sent.size(), 1u);
        EXPECT_EQ(platform.sent[0],
                  hex("0001 0004 50000005 0079 0010 00000000 00000003 00000000 0007 1003"));
        EXPECT_TRUE(platform.open_sockets().empty());
    });
}

TEST(SmoothPeriod, StartRefusesArgumentsOutOfRangeUnseen)
{
    in_fresh_process([] {
        for (uint16_t client : {uint16_t{4095}, uint16_t{4098}, uint16_t{4100}})
            EXPECT_EQ(OFP_SmoothStart(client, 1, 0), failed);
        EXPECT_EQ(OFP_SmoothStart(4096, 0xffffffff, 0), failed);
        EXPECT_EQ(OFP_SmoothStart(4096, 1, 2), failed);
        EXPECT_EQ(OFP_SmoothStart(4096, 1, 0xffffffff), failed);
        EXPECT_FALSE(ofp::smooth_is_open());
        EXPECT_EQ(platform.calls(), std::vector<Call>());
    });
}

TEST(SmoothPeriod, AnotherIdOrModeIsRefusedWhileOneIsOpen)
{
    in_fresh_process([] {
        EXPECT_EQ(start(4096, 5, 1), ok);
        platform = Platform();
        EXPECT_EQ(OFP_SmoothStart(4096, 6, 1), failed);
        EXPECT_EQ(OFP_SmoothStart(4096, 5, 0), failed);
        EXPECT_EQ(platform.calls(), std::vector<Call>());
        EXPECT_TRUE(is_open(5, 1));
        EXPECT_EQ(start(4097, 5, 1), ok) << "confirmed, by another client too";
    });
}

TEST(SmoothPeriod, AFailedStartOpensNone)
{
    in_fresh_process([] {
        platform.next("SOCK_Connect", {-1, ECONNREFUSED});
        EXPECT_EQ(OFP_SmoothStart(4096, 5, 1), failed);
        EXPECT_FALSE(ofp::smooth_is_open());
        platform.next("SOCK_Send", {-1, EPIPE});
        EXPECT_EQ(OFP_SmoothStart(4096, 5, 1), failed);
        EXPECT_FALSE(ofp::smooth_is_open());
        platform.reply(error_reply(0, 1, 0));
        platform.reply(barrier_reply(0));
        EXPECT_EQ(OFP_SmoothStart(4096, 5, 1), failed);
        EXPECT_FALSE(ofp::smooth_is_open());
        EXPECT_EQ(ofp::client_head(4096).smooth_mode, 2u); // as it was before
        EXPECT_EQ(start(4096, 6, 0), ok) << "any other period may follow";
        EXPECT_TRUE(is_open(6, 0));
    });
}

TEST_F(Smooth, AFailedConfirmationKeepsTheOpenPeriod)
{
    EXPECT_EQ(OFP_SmoothStart(4096, smooth_id, smooth_mode), failed); // no answer
    EXPECT_TRUE(is_open(smooth_id, smooth_mode));
}

TEST_F(Smooth, TheHeadNamesZoneNodeAndClient)
{
    platform.zone = 0x01020304;
    platform.lip = 0x0506;
    const OfpClientHead head = ofp::client_head(4097);
    EXPECT_EQ(head.zone_id, 0x01020304u);
    EXPECT_EQ(head.local_lip, 0x0506);
    EXPECT_EQ(head.client_id, 4097);
}

TEST_F(Smooth, EndAwaitsNothingAndKeepsThePeriod)
{
    EXPECT_EQ(OFP_SmoothEnd(4096), ok);
    ASSERT_EQ(platform.sent.size(), 1u);
    EXPECT_EQ(platform.sent[0], hex("0001 0004 50000006") + client_head_tlv(4096));
    EXPECT_EQ(platform.calls("SOCK_Recv").size(), 0u);
    EXPECT_TRUE(is_open(smooth_id, smooth_mode));
}

TEST_F(Smooth, EndDoesNotReportAFailedSend)
{
    platform.next("SOCK_Send", {-1, EPIPE});
    EXPECT_EQ(OFP_SmoothEnd(4097), ok);
}

TEST_F(Smooth, EndRefusesAForeignClientUnseen)
{
    EXPECT_EQ(OFP_SmoothEnd(4098), failed);
    EXPECT_EQ(platform.calls(), std::vector<Call>());
}

TEST(SmoothPeriod, EndIsRefusedWhileNoneIsOpen)
{
    in_fresh_process([] {
        EXPECT_EQ(OFP_SmoothEnd(4096), failed);
        EXPECT_EQ(platform.calls(), std::vector<Call>());
    });
}

TEST_F(Smooth, EveryFailureIsHandled)
{
    const Operation start = {
        [] { platform.reply(barrier_reply(0)); },
        [] { return OFP_SmoothStart(4096, smooth_id, smooth_mode); },
    };
    expect_failures_handled(start, setter_codes({{"SOCK_Send", failed}, {"SOCK_Recv", failed}}));
    expect_same_datagrams_on_any_stack(start);
    const Operation end = {{}, [] { return OFP_SmoothEnd(4097); }};
    expect_failures_handled(end, setter_codes({{"SOCK_SetOption", ok}, {"SOCK_Send", ok}}));
    expect_same_datagrams_on_any_stack(end);
    EXPECT_TRUE(is_open(smooth_id, smooth_mode));
}

#include "ofp/channel.h"

#include <cerrno>

#include "double/platform.h"
#include "double/sweep.h"
#include "ipc/channel.h"
#include "ofp/result.h"

using namespace test;

namespace {

class Channel : public PlatformTest {
protected:
    // A socket for the calls that take one.
    int32_t open()
    {
        const int32_t s = SOCK_Socket(37, 2, 1);
        scope = std::make_unique<ofp::Channel>(s);
        return s;
    }

    std::unique_ptr<ofp::Channel> scope;
    uint64_t result = 99;
};

const Bytes service_address = hex("10 25 0492 8000 00000000000000000000");

// 64-bit seconds and microseconds, in host order.
Bytes seconds(uint8_t count) { return Bytes({count}) + Bytes(15); }

} // namespace

TEST_F(Channel, ConnectOpensADatagramSocketToTheServiceAddress)
{
    const int32_t s = OFP_plgn_Connect(0, &result);
    EXPECT_EQ(platform.calls(),
              std::vector({Call{"SOCK_Socket", {37, 2, 1}},
                           Call{"SOCK_Connect", {uint64_t(s)}, service_address}}));
    EXPECT_EQ(result, uint64_t{OFP_RC_OK});
    EXPECT_EQ(OFP_plgn_Close(s), 0);
}

TEST_F(Channel, ConnectSetsBothTimeOuts)
{
    const int32_t s = OFP_plgn_Connect(30, &result);
    EXPECT_EQ(platform.calls("SOCK_SetOption"),
              std::vector({Call{"SOCK_SetOption", {uint64_t(s), 1, 0x1005}, seconds(30)},
                           Call{"SOCK_SetOption", {uint64_t(s), 1, 0x1006}, seconds(30)}}));
    EXPECT_EQ(platform.sequence(), "SOCK_Socket SOCK_SetOption SOCK_SetOption SOCK_Connect");
    OFP_plgn_Close(s);
}

TEST_F(Channel, ConnectWithoutASocketFails)
{
    platform.next("SOCK_Socket", {-1, EMFILE});
    EXPECT_EQ(OFP_plgn_Connect(30, &result), -1);
    EXPECT_EQ(result, uint64_t{OFP_RC_FAILED});
    EXPECT_EQ(platform.sequence(), "SOCK_Socket");
}

TEST_F(Channel, ConnectTriesTheReceiveTimeOutAfterTheSendTimeOutFailed)
{
    platform.next("SOCK_SetOption", {-1, EINVAL});
    EXPECT_EQ(OFP_plgn_Connect(30, &result), -1);
    EXPECT_EQ(result, uint64_t{OFP_RC_FAILED});
    EXPECT_EQ(platform.sequence(), "SOCK_Socket SOCK_SetOption SOCK_SetOption SOCK_Close");
    EXPECT_EQ(platform.calls("SOCK_SetOption")[1].arguments[2], 0x1006u);
}

TEST_F(Channel, ConnectFailsWhenTheReceiveTimeOutFails)
{
    platform.next("SOCK_SetOption", {0});
    platform.next("SOCK_SetOption", {-1, EINVAL});
    EXPECT_EQ(OFP_plgn_Connect(30, &result), -1);
    EXPECT_EQ(result, uint64_t{OFP_RC_FAILED});
    EXPECT_EQ(platform.sequence(), "SOCK_Socket SOCK_SetOption SOCK_SetOption SOCK_Close");
}

TEST_F(Channel, ConnectToNobodyIsNoReply)
{
    platform.next("SOCK_Connect", {-1, ECONNREFUSED});
    EXPECT_EQ(OFP_plgn_Connect(0, &result), -1);
    EXPECT_EQ(result, uint64_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(platform.sequence(), "SOCK_Socket SOCK_Connect SOCK_Close");
}

TEST_F(Channel, ConnectFailuresAreHandled)
{
    auto run = [] {
        uint64_t code = 99;
        const int32_t s = OFP_plgn_Connect(30, &code);
        EXPECT_EQ(s < 0, code != 0);
        if (s >= 0)
            OFP_plgn_Close(s);
        return code;
    };
    expect_failures_handled({{}, run}, {{"SOCK_Socket", OFP_RC_FAILED},
                                        {"SOCK_SetOption", OFP_RC_FAILED},
                                        {"SOCK_Connect", OFP_RC_NO_REPLY},
                                        {"SOCK_Close", OFP_RC_OK}});
}

TEST_F(Channel, ConnectVfwEntersTheContainer)
{
    const int32_t s = OFP_plgn_ConnectVfw();
    EXPECT_EQ(platform.calls("ZONE_IsContainer"), std::vector({Call{"ZONE_IsContainer", {3}}}));
    EXPECT_EQ(platform.calls("SOCK_"),
              std::vector({Call{"SOCK_Socket", {37, 2, 1}},
                           Call{"SOCK_SetOption", {uint64_t(s), 0x113, 16}, hex("05000000")},
                           Call{"SOCK_Connect", {uint64_t(s)}, service_address}}));
    OFP_plgn_Close(s);
}

TEST_F(Channel, ConnectVfwInAContainerSetsNoOption)
{
    platform.zone_is_container = true;
    const int32_t s = OFP_plgn_ConnectVfw();
    EXPECT_EQ(platform.sequence(), "SOCK_Socket SOCK_Connect");
    EXPECT_EQ(platform.sequence("ZONE_GetCurrentContainer"), "");
    OFP_plgn_Close(s);
}

TEST_F(Channel, ConnectVfwFailuresAreHandled)
{
    auto run = [] {
        const int32_t s = OFP_plgn_ConnectVfw();
        if (s >= 0)
            OFP_plgn_Close(s);
        return uint64_t{s < 0};
    };
    expect_failures_handled(
        {{}, run},
        {{"SOCK_Socket", 1}, {"SOCK_SetOption", 0}, {"SOCK_Connect", 1}, {"SOCK_Close", 0}});
}

TEST_F(Channel, ConnectOfAConnectedSocketSucceeds)
{
    const int32_t s = open();
    platform.next("SOCK_Connect", {-1, EISCONN});
    EXPECT_EQ(OFP_util_Connect(s, service_address.data()), 0);
}

TEST_F(Channel, ConnectReturnsThePlatformsFailure)
{
    const int32_t s = open();
    errno = EISCONN; // of an earlier call: only a failure looks at it
    EXPECT_EQ(OFP_util_Connect(s, service_address.data()), 0);
    platform.next("SOCK_Connect", {-1, ENOENT});
    EXPECT_EQ(OFP_util_Connect(s, service_address.data()), -1);
}

TEST_F(Channel, InterruptedConnectThatWentThroughSucceeds)
{
    const int32_t s = open();
    platform.interrupt("SOCK_Connect", 5);
    platform.next("SOCK_Connect", {-1, EISCONN});
    EXPECT_EQ(OFP_util_Connect(s, service_address.data()), 0);
    EXPECT_EQ(platform.calls("SOCK_Connect").size(), 6u);
}

TEST_F(Channel, SendTakesTheWholeDatagramOrFails)
{
    const int32_t s = open();
    const Bytes datagram = counting(8);
    EXPECT_EQ(OFP_util_Send(s, datagram.data(), 8), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({datagram}));
    EXPECT_EQ(platform.calls("SOCK_Send")[0].arguments, std::vector({uint64_t(s), uint64_t{0}}));
    platform.next("SOCK_Send", {7});
    EXPECT_EQ(OFP_util_Send(s, datagram.data(), 8), uint32_t{OFP_RC_FAILED});
    platform.next("SOCK_Send", {-1, EAGAIN});
    EXPECT_EQ(OFP_util_Send(s, datagram.data(), 8), uint32_t{OFP_RC_FAILED});
    EXPECT_EQ(OFP_util_Send(s, nullptr, 0), uint32_t{OFP_RC_OK});
}

TEST_F(Channel, SendAndReceiveRepeatWhatSignalsInterrupt)
{
    const int32_t s = open();
    Bytes buffer(8);
    platform.interrupt("SOCK_Send", 1000);
    EXPECT_EQ(OFP_util_Send(s, buffer.data(), 8), uint32_t{OFP_RC_OK});
    platform.interrupt("SOCK_Recv", 1000);
    platform.interrupt("SOCK_RecvFrom", 1000);
    platform.reply(hex("0102"));
    platform.reply(hex("03"));
    EXPECT_EQ(OFP_util_Recv(s, 8, buffer.data()), 2u);
    EXPECT_EQ(OFP_util_RecvFrom(s, 8, 0x40, buffer.data()), 1u);
    EXPECT_EQ(buffer.slice(0, 2), hex("0302"));
}

TEST_F(Channel, ReceivingNothingIsZero)
{
    const int32_t s = open();
    Bytes buffer(8, 0xee);
    platform.hang_up();
    EXPECT_EQ(OFP_util_Recv(s, 8, buffer.data()), 0u);
    EXPECT_EQ(OFP_util_Recv(s, 8, buffer.data()), 0u); // timed out
    EXPECT_EQ(OFP_util_RecvFrom(s, 8, 0x40, buffer.data()), 0u);
    EXPECT_EQ(buffer, Bytes(8, 0xee));
}

TEST_F(Channel, ReceivePassesSizeAndFlags)
{
    const int32_t s = open();
    Bytes buffer(8);
    platform.reply(counting(20));
    EXPECT_EQ(OFP_util_Recv(s, 8, buffer.data()), 8u);
    EXPECT_EQ(OFP_util_RecvFrom(s, 5, 0x40, buffer.data()), 0u);
    EXPECT_EQ(platform.calls("SOCK_Recv"),
              std::vector({Call{"SOCK_Recv", {uint64_t(s), 8, 0}},
                           Call{"SOCK_RecvFrom", {uint64_t(s), 5, 0x40}}}));
}

TEST_F(Channel, CloseReturnsThePlatformsAnswer)
{
    const int32_t s = SOCK_Socket(37, 2, 1);
    platform.next("SOCK_Close", {-1, EIO});
    EXPECT_EQ(OFP_plgn_Close(s), -1);
}

TEST_F(Channel, ScopeClosesOnceUnlessReleased)
{
    const int32_t s = SOCK_Socket(37, 2, 1);
    {
        ofp::Channel channel(s);
        EXPECT_EQ(channel.release(), s);
        EXPECT_FALSE(channel.is_open());
    }
    EXPECT_TRUE(platform.open_sockets().contains(s));
    {
        ofp::Channel channel(s);
    }
    {
        ofp::Channel none(-1);
    }
    EXPECT_EQ(platform.sequence("SOCK_Close"), "SOCK_Close");
}

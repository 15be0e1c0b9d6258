#include "ipc/round_trip.h"

#include <cerrno>

#include "double/platform.h"
#include "double/sweep.h"
#include "ipc/channel.h"
#include "ofp/result.h"

using namespace test;

namespace {

class RoundTrip : public PlatformTest {};

} // namespace

TEST_F(RoundTrip, ConnectsWithin30Seconds)
{
    const ofp::Channel channel(ofp::set_connect());
    EXPECT_TRUE(channel.is_open());
    EXPECT_EQ(platform.calls("SOCK_SetOption")[0].bytes[0], 30);
    EXPECT_EQ(platform.sequence("SERVICE_"), "SERVICE_GetStatus");
}

TEST_F(RoundTrip, StartsTheDaemonFirst)
{
    platform.daemon_runs(false);
    const ofp::Channel channel(ofp::set_connect());
    EXPECT_TRUE(channel.is_open());
    EXPECT_EQ(platform.sequence("SERVICE_"), "SERVICE_GetStatus SERVICE_Start");
}

TEST_F(RoundTrip, OpensNoSocketWhenTheDaemonCannotBeStarted)
{
    platform.daemon_runs(false);
    platform.next("SERVICE_Start", {9});
    EXPECT_EQ(ofp::set_connect(), -1);
    EXPECT_EQ(platform.sockets_opened, 0u);
}

TEST_F(RoundTrip, SendsADatagramOfTheCallers)
{
    const ofp::Channel channel(ofp::set_connect());
    const Bytes datagram = counting(30);
    platform.reply(result_reply(0x55));
    EXPECT_EQ(ofp::set_send_message(channel.socket(), {datagram.data(), datagram.size()}), 0x55u);
    EXPECT_EQ(platform.sent, std::vector({datagram}));
    EXPECT_EQ(ofp::set_send_message(channel.socket(), {datagram.data(), datagram.size()}),
              uint32_t{OFP_RC_NO_REPLY});
    platform.next("SOCK_Send", {-1, EPIPE});
    EXPECT_EQ(ofp::set_send_message(channel.socket(), {datagram.data(), datagram.size()}),
              uint32_t{OFP_RC_SEND_FAILED});
}

TEST_F(RoundTrip, ReadsOnlyAResultReply)
{
    uint32_t code = 99;
    const Bytes result = result_reply(3), other = message(0x20000005, {tlv(2, hex("00000003"))});
    EXPECT_FALSE(ofp::read_result({other.data(), other.size()}, &code));
    EXPECT_EQ(code, 99u);
    EXPECT_TRUE(ofp::read_result({result.data(), result.size()}, &code));
    EXPECT_EQ(code, 3u);
}

#include "config/configure.h"

#include <cerrno>

#include "double/sweep.h"
#include "ofp/message.h"

using namespace test;

namespace {

class Configure : public PlatformTest {};

const OfpEchoTime thirty_seconds{.interval = 30, .instance_id = 0x1001};
const Bytes set_echo_time = hex("0001 0004 00000006"             // set echo time
                                "0008 0008 0000001e 1001 0000"); // 30 s, instance 4097

uint32_t configure()
{
    return ofp::configure(OFP_MSG_SET_ECHO_TIME, OFP_TLV_EchoTime, thirty_seconds);
}

} // namespace

TEST_F(Configure, SendsOneRecordAndReturnsTheResult)
{
    platform.reply(result_reply(0x40010008));
    EXPECT_EQ(configure(), uint32_t{OFP_RC_INVALID});
    EXPECT_EQ(platform.sent, std::vector({set_echo_time}));
    EXPECT_EQ(platform.sequence(), "SOCK_Socket SOCK_SetOption SOCK_SetOption SOCK_Connect "
                                   "SOCK_Send SOCK_Recv SOCK_Close");
}

TEST_F(Configure, HandlesFailures)
{
    const auto prepare = [] { platform.reply(result_reply(0)); };
    expect_failures_handled({prepare, configure}, setter_codes());
    const auto prepare_stopped = [] {
        platform.nodes.push_back({.id = 8});
        platform.daemon_runs(false);
        platform.reply(result_reply(0));
    };
    expect_failures_handled({prepare_stopped, configure}, setter_codes());
}

TEST_F(Configure, BuildsARequestOfSeveralTlvs)
{
    platform.reply(result_reply(0));
    EXPECT_EQ(ofp::configure_with(OFP_MSG_SET_FLOW_TABLE,
                                  [](ofp::Writer &request) {
                                      request.tlv(OFP_TLV_InstanceID, OfpInstanceID{0x1001, {}});
                                      request.tlv(OFP_TLV_FlowTable, OfpFlowTable{1, {}, 2});
                                  }),
              uint32_t{OFP_RC_OK});
    EXPECT_EQ(
        platform.sent,
        std::vector({message(12, {tlv(4, hex("10010000")), tlv(69, hex("01000000 00000002"))})}));
}

TEST_F(Configure, BuildsNothingWithoutAChannel)
{
    platform.next("SOCK_Connect", {-1, ENOENT});
    EXPECT_EQ(ofp::configure_with(1, [](ofp::Writer &) { ADD_FAILURE(); }),
              uint32_t{OFP_RC_FAILED});
}

TEST_F(Configure, NotifyAwaitsNoReply)
{
    platform.reply(result_reply(5));
    EXPECT_EQ(ofp::notify(OFP_MSG_SET_ECHO_TIME, OFP_TLV_EchoTime, thirty_seconds),
              uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({set_echo_time}));
    EXPECT_EQ(platform.unread(), 1u);

    const auto run = [] {
        return ofp::notify(OFP_MSG_SET_ECHO_TIME, OFP_TLV_EchoTime, thirty_seconds);
    };
    expect_failures_handled({{}, run}, setter_codes({{"SOCK_Send", OFP_RC_FAILED}}));
}

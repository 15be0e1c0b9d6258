#include <cerrno>

#include "double/platform.h"
#include "ipc/channel.h"
#include "ofp/codec.h"
#include "ofp/message.h"
#include "ofp/result.h"

using namespace test;

namespace {

class BasicMessage : public PlatformTest {
protected:
    int32_t socket() const { return channel.socket(); }

    ofp::Channel channel{SOCK_Socket(37, 2, 1)};
    OfpEchoTime time{.interval = 30, .instance_id = 0x1001};
};

const Bytes set_echo_time = hex("0001 0004 00000006"             // set echo time
                                "0008 0008 0000001e 1001 0000"); // 30 s, instance 4097

} // namespace

TEST_F(BasicMessage, SendsHeadAndTlvAndReadsNothing)
{
    platform.reply(result_reply(7));
    EXPECT_EQ(OFP_util_SendBasicMsg(socket(), OFP_MSG_SET_ECHO_TIME, OFP_TLV_EchoTime, 8, &time),
              uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({set_echo_time}));
    EXPECT_EQ(platform.unread(), 1u);
}

TEST_F(BasicMessage, SendReportsAFailure)
{
    platform.next("SOCK_Send", {-1, ETIMEDOUT});
    EXPECT_EQ(OFP_util_SendBasicMsg(socket(), 6, OFP_TLV_EchoTime, 8, &time),
              uint32_t{OFP_RC_FAILED});
}

TEST_F(BasicMessage, AValueThatDoesNotFitSendsAnEmptyDatagram)
{
    const Bytes value(8192);
    EXPECT_EQ(OFP_util_SendBasicMsg(socket(), 6, OFP_TLV_FlowEntry, 8181, value.data()),
              uint32_t{OFP_RC_OK});
    EXPECT_EQ(OFP_util_SendBasicMsg(socket(), 6, OFP_TLV_FlowEntry, 9000, nullptr),
              uint32_t{OFP_RC_OK});
    EXPECT_EQ(OFP_util_SendBasicMsg(socket(), 6, OFP_TLV_FlowEntry, 8180, value.data()),
              uint32_t{OFP_RC_OK});
    ASSERT_EQ(platform.sent.size(), 3u);
    EXPECT_EQ(platform.sent[0], Bytes());
    EXPECT_EQ(platform.sent[1], Bytes());
    EXPECT_EQ(platform.sent[2].size(), 8192u);
}

TEST_F(BasicMessage, RoundTripReturnsTheResult)
{
    for (uint32_t code : {0u, 0x40010001u, 0x12345678u}) {
        platform.reply(result_reply(code));
        EXPECT_EQ(OFP_set_SendBasicMsg(socket(), 6, OFP_TLV_EchoTime, 8, &time), code);
    }
    EXPECT_EQ(platform.sent[0], set_echo_time);
    EXPECT_EQ(platform.calls("SOCK_Recv")[0], (Call{"SOCK_Recv", {uint64_t(socket()), 8192, 0}}));
}

TEST_F(BasicMessage, RoundTripThatCannotSend)
{
    platform.reply(result_reply(0));
    platform.next("SOCK_Send", {5});
    EXPECT_EQ(OFP_set_SendBasicMsg(socket(), 6, OFP_TLV_EchoTime, 8, &time),
              uint32_t{OFP_RC_SEND_FAILED});
    EXPECT_EQ(platform.unread(), 1u);
}

TEST_F(BasicMessage, RoundTripWithoutAReply)
{
    EXPECT_EQ(OFP_set_SendBasicMsg(socket(), 6, OFP_TLV_EchoTime, 8, &time),
              uint32_t{OFP_RC_NO_REPLY});
    platform.hang_up();
    EXPECT_EQ(OFP_set_SendBasicMsg(socket(), 6, OFP_TLV_EchoTime, 8, &time),
              uint32_t{OFP_RC_NO_REPLY});
}

TEST_F(BasicMessage, AForeignReplyCountsAsSuccess)
{
    for (const Bytes &reply :
         {message(0x20000002, {tlv(2, hex("40010001"))}), message(0x20000001),
          message(0x20000001, {tlv(3, hex("40010001"))}), tlv(2, hex("40010001")), hex("00")}) {
        platform.reply(reply);
        EXPECT_EQ(OFP_set_SendBasicMsg(socket(), 6, OFP_TLV_EchoTime, 8, &time),
                  uint32_t{OFP_RC_OK})
            << to_hex(reply);
    }
}

TEST_F(BasicMessage, EveryTruncationOfAResultReplyIsSurvived)
{
    const Bytes reply = result_reply(0x40010001);
    for (size_t size = 1; size <= reply.size(); ++size) {
        platform.reply(reply.slice(0, size));
        EXPECT_EQ(OFP_set_SendBasicMsg(socket(), 6, OFP_TLV_EchoTime, 8, &time),
                  size == reply.size() ? uint32_t{OFP_RC_FAILED} : uint32_t{OFP_RC_OK});
    }
}

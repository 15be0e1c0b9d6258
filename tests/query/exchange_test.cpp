#include "query/exchange.h"

#include <cerrno>
#include <random>

#include "double/sweep.h"
#include "ofp/message.h"
#include "ofp/result.h"

using namespace test;

namespace {

class Exchange : public PlatformTest {};

constexpr uint32_t reply_code = OFP_MSG_TABLE_INFO;
const OfpInstTbl key{.instance_id = 0x1001, .table_id = 5};
const Bytes request = hex("0001 0004 1000000a"     // get table information
                          "000e 0004 1001 05 00"); // instance 4097, table 5

uint32_t typed(OfpEchoTime *time)
{
    return ofp::ask(OFP_MSG_GET_TABLE_INFO, OFP_TLV_InstTbl, key)
        .typed(reply_code, OFP_TLV_EchoTime, *time);
}

uint32_t raw(Bytes *buffer, uint64_t *length)
{
    return ofp::ask(OFP_MSG_GET_TABLE_INFO, OFP_TLV_InstTbl, key)
        .raw(buffer->size(), buffer->data(), length);
}

// Hands out the types of the reply's TLVs; ends with a code at a type above 100.
uint32_t each(std::vector<uint16_t> *types)
{
    return ofp::ask(OFP_MSG_GET_TABLE_INFO, OFP_TLV_InstTbl, key)
        .each([types](const ofp::Tlv &tlv) {
            types->push_back(tlv.type);
            return tlv.type > 100 ? tlv.type : uint32_t{OFP_RC_OK};
        });
}

} // namespace

TEST_F(Exchange, DoesNotStartADaemonThatIsDown)
{
    platform.daemon_runs(false);
    OfpEchoTime time{.interval = 7};
    EXPECT_EQ(typed(&time), uint32_t{OFP_RC_DAEMON_DOWN});
    EXPECT_EQ(time.interval, 7u);
    EXPECT_EQ(platform.sockets_opened, 0u);
    EXPECT_EQ(platform.sequence("SERVICE_"), "SERVICE_GetStatus");
}

TEST_F(Exchange, SendsTheRequestWithin30SecondsAndClosesTheChannel)
{
    platform.reply(message(reply_code, {tlv(8, hex("0000001e 1001 0000"))}));
    OfpEchoTime time{};
    EXPECT_EQ(typed(&time), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({request}));
    EXPECT_EQ(time.interval, 30u);
    EXPECT_EQ(time.instance_id, 0x1001);
    EXPECT_EQ(platform.sequence(), "SOCK_Socket SOCK_SetOption SOCK_SetOption SOCK_Connect "
                                   "SOCK_Send SOCK_Recv SOCK_Close");
    EXPECT_EQ(platform.calls("SOCK_SetOption")[1].bytes, hex("1e") + Bytes(15));
    EXPECT_EQ(platform.calls("SOCK_Recv")[0].arguments[1], 8192u);
}

TEST_F(Exchange, SendsAHeadAlone)
{
    platform.reply(result_reply(0x77));
    OfpEchoTime time{};
    EXPECT_EQ(ofp::ask(OFP_MSG_GET_SUMMARY).typed(reply_code, OFP_TLV_EchoTime, time), 0x77u);
    EXPECT_EQ(platform.sent, std::vector({hex("0001 0004 10000017")}));
}

TEST_F(Exchange, ResultReplyGivesItsCodeAndLeavesTheRecord)
{
    for (uint32_t code : {0u, 0x40010001u, 5u}) {
        platform.reply(result_reply(code));
        OfpEchoTime time{.interval = 7};
        EXPECT_EQ(typed(&time), code);
        EXPECT_EQ(time.interval, 7u);
    }
}

TEST_F(Exchange, AnyOtherReplyIsZeroAndLeavesTheRecord)
{
    const Bytes value = tlv(8, hex("0000001e 1001 0000"));
    for (const Bytes &reply : {message(reply_code + 1, {value}), message(reply_code),
                               message(reply_code, {tlv(9, Bytes(8)), value}), value, hex("00")}) {
        platform.reply(reply);
        OfpEchoTime time{.interval = 7};
        EXPECT_EQ(typed(&time), uint32_t{OFP_RC_OK});
        EXPECT_EQ(time.interval, 7u);
    }
}

TEST_F(Exchange, AShorterValueConvertsTheWholeRecord)
{
    platform.reply(message(reply_code, {tlv(8, hex("0000001e"))}));
    OfpEchoTime time{.interval = 7, .instance_id = 0x1234};
    EXPECT_EQ(typed(&time), uint32_t{OFP_RC_OK});
    EXPECT_EQ(time.interval, 30u);
    EXPECT_EQ(time.instance_id, 0x3412);
}

TEST_F(Exchange, ALongerValueIsCutToTheRecord)
{
    platform.reply(message(reply_code, {tlv(8, hex("0000001e 1001 0000 99999999"))}));
    OfpEchoTime time[2] = {{}, {.interval = 7}};
    EXPECT_EQ(typed(&time[0]), uint32_t{OFP_RC_OK});
    EXPECT_EQ(time[0].interval, 30u);
    EXPECT_EQ(time[1].interval, 7u);
}

TEST_F(Exchange, TypedHandlesFailures)
{
    auto prepare = [] { platform.reply(message(reply_code, {tlv(8, Bytes(8))})); };
    auto run = [] {
        OfpEchoTime time{};
        return typed(&time);
    };
    expect_failures_handled({prepare, run}, query_codes());
    expect_same_datagrams_on_any_stack({prepare, run});
}

TEST_F(Exchange, RawGivesTheWholeDatagram)
{
    const Bytes reply = message(reply_code, {tlv(8, hex("0000001e 1001 0000"))});
    platform.reply(reply);
    Bytes buffer(64, 0xee);
    uint64_t length = 99;
    EXPECT_EQ(raw(&buffer, &length), uint32_t{OFP_RC_OK});
    EXPECT_EQ(length, reply.size());
    EXPECT_EQ(buffer, reply + Bytes(64 - reply.size(), 0xee));
    EXPECT_EQ(platform.calls("SOCK_Recv")[0].arguments[1], 64u);
}

TEST_F(Exchange, RawCutsToTheCallersSize)
{
    const Bytes reply = message(reply_code, {tlv(8, hex("0000001e 1001 0000"))});
    platform.reply(reply);
    Bytes buffer(10);
    uint64_t length = 99;
    EXPECT_EQ(raw(&buffer, &length), uint32_t{OFP_RC_OK});
    EXPECT_EQ(length, 10u);
    EXPECT_EQ(buffer, reply.slice(0, 10));
}

TEST_F(Exchange, RawResultReplyDoesNotWriteTheLength)
{
    for (uint32_t code : {0u, 0x40010001u}) {
        platform.reply(result_reply(code));
        Bytes buffer(64);
        uint64_t length = 99;
        EXPECT_EQ(raw(&buffer, &length), code);
        EXPECT_EQ(length, 99u);
    }
}

TEST_F(Exchange, RawHandlesFailuresWithoutWritingTheLength)
{
    auto prepare = [] { platform.reply(message(reply_code)); };
    auto run = [] {
        Bytes buffer(64);
        uint64_t length = 99;
        const uint32_t code = raw(&buffer, &length);
        EXPECT_EQ(length, code == 0 ? 8u : 99u);
        return code;
    };
    expect_failures_handled({prepare, run}, query_codes());
}

TEST_F(Exchange, EachVisitsTheTlvsBehindTheHead)
{
    platform.reply(message(reply_code, {tlv(8, Bytes(8)), tlv(9, {}), tlv(10, Bytes(3))}));
    std::vector<uint16_t> types;
    EXPECT_EQ(each(&types), uint32_t{OFP_RC_OK});
    EXPECT_EQ(types, std::vector<uint16_t>({8, 9, 10}));
}

TEST_F(Exchange, EachEndsAtTheFirstCode)
{
    platform.reply(message(reply_code, {tlv(8, {}), tlv(200, {}), tlv(9, {})}));
    std::vector<uint16_t> types;
    EXPECT_EQ(each(&types), 200u);
    EXPECT_EQ(types, std::vector<uint16_t>({8, 200}));
}

TEST_F(Exchange, EachSeesNothingInAResultReplyOrWithoutAHead)
{
    std::vector<uint16_t> types;
    platform.reply(result_reply(0));
    EXPECT_EQ(each(&types), uint32_t{OFP_RC_OK});
    platform.reply(result_reply(6));
    EXPECT_EQ(each(&types), 6u);
    platform.reply(tlv(8, {}));
    EXPECT_EQ(each(&types), uint32_t{OFP_RC_OK});
    EXPECT_TRUE(types.empty());
}

TEST_F(Exchange, EachHandlesFailures)
{
    auto prepare = [] { platform.reply(message(reply_code, {tlv(8, Bytes(8))})); };
    auto run = [] {
        std::vector<uint16_t> types;
        return each(&types);
    };
    expect_failures_handled({prepare, run}, query_codes());
}

TEST_F(Exchange, TakesSeveralDatagramsUntilOneGoesWrong)
{
    platform.reply(message(reply_code, {tlv(8, {})}));
    platform.reply(result_reply(0));
    ofp::Exchange query = ofp::ask(OFP_MSG_GET_SUMMARY);
    ofp::Reply reply;
    EXPECT_EQ(query.receive(&reply), uint32_t{OFP_RC_OK});
    EXPECT_EQ(reply.code(), reply_code);
    EXPECT_EQ(reply.length, 12u);
    EXPECT_EQ(reply.body().size, 4u);
    EXPECT_EQ(query.receive(&reply), uint32_t{OFP_RC_OK});
    EXPECT_EQ(reply.length, 0u); // of a result reply, not of the datagram before
    EXPECT_EQ(reply.body().size, 0u);
    EXPECT_EQ(query.receive(&reply), uint32_t{OFP_RC_NO_REPLY});
    platform.reply(message(reply_code));
    EXPECT_EQ(query.receive(&reply), uint32_t{OFP_RC_NO_REPLY}); // the first failure stays
    EXPECT_EQ(platform.unread(), 1u);
}

// Whatever arrives, a query ends with a code, stays inside its record and closes its channel.
TEST_F(Exchange, SurvivesAnyReply)
{
    std::mt19937 random(42);
    for (int round = 0; round < 2000; ++round) {
        Bytes reply = message(random() % 2 ? reply_code : uint32_t{OFP_MSG_RESULT},
                              {tlv(random() % 2 ? 8 : 2, Bytes(random() % 12, 0x11))});
        for (int flips = static_cast<int>(random() % 4); flips > 0; --flips)
            reply[random() % reply.size()] = static_cast<uint8_t>(random());
        reply.resize(random() % (reply.size() + 1));
        for (int ending = 0; ending < 3; ++ending)
            platform.reply(reply);

        struct {
            OfpEchoTime time;
            uint64_t guard = 0xeeeeeeee;
        } record{};
        static_cast<void>(typed(&record.time));
        EXPECT_EQ(record.guard, 0xeeeeeeeeu);

        Bytes buffer(16, 0xee);
        uint64_t length = 0;
        static_cast<void>(ofp::ask(OFP_MSG_GET_SUMMARY).raw(8, buffer.data(), &length));
        EXPECT_LE(length, 8u);
        EXPECT_EQ(buffer.slice(8), Bytes(8, 0xee));

        std::vector<uint16_t> types;
        static_cast<void>(each(&types));
        EXPECT_LE(types.size(), reply.size() / 4);
        EXPECT_TRUE(platform.open_sockets().empty());
        EXPECT_EQ(platform.unread(), 0u);
    }
}

TEST_F(Exchange, ACodeOfTheCallersEndsIt)
{
    ofp::Exchange query;
    EXPECT_TRUE(query.opened());
    query.fail(OFP_RC_NO_RESOURCE);
    const Bytes datagram = message(1);
    query.send({datagram.data(), datagram.size()});
    EXPECT_TRUE(platform.sent.empty());
    EXPECT_EQ(query.code(), uint32_t{OFP_RC_NO_RESOURCE});
}

#include <cerrno>

#include "query/query_case.h"

using namespace test;

namespace {

class InstanceQuery : public PlatformTest {};

const Bytes key = tlv(4, hex("1001 0000")); // instance 4097
const Bytes exists = message(0x20000002, {tlv(5, hex("0001 0000"))});
const Bytes next_instance = message(0x20000003, {tlv(4, hex("1002 0000"))});
const Bytes is_active = message(0x20000011, {tlv(67, hex("0001 0000"))});

} // namespace

TEST_F(InstanceQuery, ExistsWhenTheDaemonSaysSo)
{
    platform.reply(exists);
    EXPECT_EQ(OFP_get_IsInstanceExist(0x1001), 1);
    EXPECT_EQ(platform.sent, std::vector({message(0x10000001, {key})}));
    platform.reply(message(0x20000002, {tlv(5, hex("0000 0000"))}));
    EXPECT_EQ(OFP_get_IsInstanceExist(0x1001), 0);
    platform.reply(message(0x20000002, {tlv(5, hex("0102 0304"))}));
    EXPECT_EQ(OFP_get_IsInstanceExist(0x1001), 0x0102); // the flag as it came
}

TEST_F(InstanceQuery, DoesNotExistOnAnyFailure)
{
    for (uint32_t code : {0u, 1u, 0x40010005u}) {
        platform.reply(result_reply(code));
        EXPECT_EQ(OFP_get_IsInstanceExist(0x1001), 0);
    }
    for (size_t size = 1; size < exists.size(); ++size) {
        platform.reply(exists.slice(0, size));
        EXPECT_EQ(OFP_get_IsInstanceExist(0x1001), 0);
    }
    platform.reply(message(0x20000003, {tlv(5, hex("0001 0000"))}));
    EXPECT_EQ(OFP_get_IsInstanceExist(0x1001), 0);
    platform.reply(message(0x20000002, {tlv(4, hex("0001 0000"))}));
    EXPECT_EQ(OFP_get_IsInstanceExist(0x1001), 0);
    EXPECT_EQ(OFP_get_IsInstanceExist(0x1001), 0); // no reply

    platform = Platform();
    platform.daemon_runs(false);
    EXPECT_EQ(OFP_get_IsInstanceExist(0x1001), 0);
    EXPECT_EQ(platform.sockets_opened, 0u);

    const Codes none = {{"SERVICE_GetStatus", 0}, {"SOCK_Socket", 0}, {"SOCK_SetOption", 0},
                        {"SOCK_Connect", 0},      {"SOCK_Send", 0},   {"SOCK_Recv", 0},
                        {"SOCK_Close", 1}};
    const Operation operation{[] { platform.reply(exists); },
                              [] { return OFP_get_IsInstanceExist(0x1001); }, 1};
    expect_failures_handled(operation, none);
    expect_same_datagrams_on_any_stack(operation);
}

TEST_F(InstanceQuery, NextIsTheKeyOfTheNextOne)
{
    platform.reply(next_instance);
    auto next = preset<OfpInstanceID>();
    EXPECT_EQ(OFP_get_NextInstance(0x1001, &next), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x10000003, {key})}));
    EXPECT_EQ(bytes_of(next), hex("0210 0000"));

    next = preset<OfpInstanceID>();
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_get_NextInstance(0x1001, &next), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(next), Bytes(4, 0xee));
}

TEST_F(InstanceQuery, NextAwaitsTheAnswerEvenIfNothingWasSent)
{
    auto next = preset<OfpInstanceID>();
    platform.next("SOCK_Send", {-1, EPIPE});
    EXPECT_EQ(OFP_get_NextInstance(0x1001, &next), uint32_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(platform.calls("SOCK_Recv").size(), 1u);
    EXPECT_EQ(bytes_of(next), Bytes(4, 0xee));

    platform.next("SOCK_Send", {3}); // cut short
    platform.reply(next_instance);
    EXPECT_EQ(OFP_get_NextInstance(0x1001, &next), uint32_t{OFP_RC_OK});
    EXPECT_EQ(next.instance_id, 0x1002);

    platform.next("SOCK_Send", {-1, EPIPE});
    platform.reply(result_reply(0x40010005));
    EXPECT_EQ(OFP_get_NextInstance(0x1001, &next), uint32_t{OFP_RC_NOT_FOUND});
}

TEST_F(InstanceQuery, NextDoesNotWaitWithoutAChannel)
{
    auto next = preset<OfpInstanceID>();
    platform.next("SOCK_Connect", {-1, ENOENT});
    platform.reply(next_instance);
    EXPECT_EQ(OFP_get_NextInstance(0x1001, &next), uint32_t{OFP_RC_NO_REPLY});
    EXPECT_TRUE(platform.calls("SOCK_Recv").empty());
    EXPECT_EQ(bytes_of(next), Bytes(4, 0xee));
}

TEST_F(InstanceQuery, NextBehavesLikeAnyQuery)
{
    expect_single_exchange({.answers = {{message(0x10000003, {key}), {next_instance}}},
                            .run =
                                [] {
                                    OfpInstanceID next{};
                                    return OFP_get_NextInstance(0x1001, &next);
                                },
                            .codes = query_codes({{"SOCK_Send", OFP_RC_NO_REPLY}}),
                            .any_code = false});
}

TEST_F(InstanceQuery, ActiveFlagIsTaken)
{
    platform.reply(is_active);
    uint32_t active = 0xeeeeeeee;
    EXPECT_EQ(OFP_get_InstActive(0x1001, &active), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x10000010, {key})}));
    EXPECT_EQ(active, 1u);
    platform.reply(message(0x20000011, {tlv(67, hex("0203 0405"))}));
    EXPECT_EQ(OFP_get_InstActive(0x1001, &active), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(active), hex("0302 0405")); // only its first half is a number
}

TEST_F(InstanceQuery, ActiveFlagIsZeroOnceAChannelWasOpen)
{
    uint32_t active = 0xee;
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_get_InstActive(1, &active), uint32_t{OFP_RC_OK});
    EXPECT_EQ(active, 0u);

    active = 0xee;
    platform.reply(result_reply(0x77));
    EXPECT_EQ(OFP_get_InstActive(1, &active), 0x77u);
    EXPECT_EQ(active, 0u);

    active = 0xee;
    EXPECT_EQ(OFP_get_InstActive(1, &active), uint32_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(active, 0u);

    active = 0xee;
    platform.next("SOCK_Send", {-1, EPIPE});
    EXPECT_EQ(OFP_get_InstActive(1, &active), uint32_t{OFP_RC_FAILED});
    EXPECT_EQ(active, 0u);

    active = 0xee;
    platform.next("SOCK_Socket", {-1, EMFILE});
    EXPECT_EQ(OFP_get_InstActive(1, &active), uint32_t{OFP_RC_FAILED});
    platform.daemon_runs(false);
    EXPECT_EQ(OFP_get_InstActive(1, &active), uint32_t{OFP_RC_DAEMON_DOWN});
    EXPECT_EQ(active, 0xeeu);
}

TEST_F(InstanceQuery, ActiveBehavesLikeAnyQuery)
{
    expect_single_exchange({.answers = {{message(0x10000010, {key}), {is_active}}},
                            .run =
                                [] {
                                    uint32_t active;
                                    return OFP_get_InstActive(0x1001, &active);
                                },
                            .any_code = false});
}

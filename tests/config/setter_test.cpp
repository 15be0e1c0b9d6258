// What all configuration calls have in common.
#include "config/setting.h"

using namespace test;

void Setting::prepare() const
{
    platform.nodes = {{.id = 7, .runs = without_daemon.has_value()}, {.id = 8}};
    if (answered)
        platform.reply(result_reply(OFP_RC_OK));
}

Codes Setting::all_codes() const
{
    Codes all = codes;
    if (without_daemon)
        all.insert({"SERVICE_GetStatus 1", *without_daemon});
    if (!answered)
        all.insert({"SOCK_Send", OFP_RC_FAILED});
    return setter_codes(all);
}

TEST_P(Setter, SendsOneDatagramAndClosesTheChannel)
{
    GetParam().prepare();
    EXPECT_EQ(GetParam().call(), OFP_RC_OK);
    EXPECT_EQ(platform.sent, std::vector({GetParam().datagram}));
    EXPECT_EQ(platform.sequence(),
              std::string("SOCK_Socket SOCK_SetOption SOCK_SetOption "
                          "SOCK_Connect SOCK_Send ") +
                  (GetParam().answered ? "SOCK_Recv SOCK_Close" : "SOCK_Close"));
}

TEST_P(Setter, WaitsThirtySeconds)
{
    GetParam().prepare();
    EXPECT_EQ(GetParam().call(), OFP_RC_OK);
    for (const Call &option : platform.calls("SOCK_SetOption"))
        EXPECT_EQ(option.bytes, hex("1e00000000000000 0000000000000000"));
}

TEST_P(Setter, SendsNothingThatNobodySet)
{
    expect_same_datagrams_on_any_stack({[] { GetParam().prepare(); }, GetParam().call});
}

TEST_P(Setter, StartsTheDaemonOnEveryNodeUnlessItMustNot)
{
    GetParam().prepare();
    platform.daemon_runs(false);
    EXPECT_EQ(GetParam().call(), GetParam().without_daemon.value_or(OFP_RC_OK));
    const bool starts = !GetParam().without_daemon;
    EXPECT_EQ(platform.find_node(7)->runs, starts);
    EXPECT_EQ(platform.find_node(8)->runs, starts);
    EXPECT_EQ(platform.sent.size(), starts ? 1u : 0u);
    EXPECT_EQ(platform.sockets_opened, starts ? 1u : 0u);
}

TEST_P(Setter, LeavesADaemonThatRunsAlone)
{
    GetParam().prepare();
    platform.daemon_runs(true);
    EXPECT_EQ(GetParam().call(), OFP_RC_OK);
    EXPECT_TRUE(platform.calls("SERVICE_Start").empty());
    EXPECT_TRUE(platform.calls("SERVICE_BatchStart").empty());
}

TEST_P(Setter, ReturnsTheDaemonsCodeIfItAnswers)
{
    platform.reply(result_reply(0x01020304));
    EXPECT_EQ(GetParam().call(), GetParam().answered ? 0x01020304u : uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.unread(), GetParam().answered ? 0u : 1u);
}

TEST_P(Setter, TakesAForeignReplyAsSuccess)
{
    const Bytes replies[] = {
        message(0x20000002, {tlv(2, hex("40010001"))}), // another message
        message(0x20000001),                            // no code
        message(0x20000001, {tlv(3, hex("40010001"))}), // another value
        hex("ffff ffff 00"),                            // no TLV
    };
    for (const Bytes &reply : replies) {
        platform = Platform();
        platform.reply(reply);
        EXPECT_EQ(GetParam().call(), OFP_RC_OK) << to_hex(reply);
    }
}

TEST_P(Setter, SaysWhenNoReplyComes)
{
    const uint32_t code = GetParam().answered ? OFP_RC_NO_REPLY : OFP_RC_OK;
    EXPECT_EQ(GetParam().call(), code) << "time-out";
    platform.hang_up();
    EXPECT_EQ(GetParam().call(), code) << "hang-up";
}

TEST_P(Setter, SaysWhenOnlyPartOfTheDatagramWasTaken)
{
    platform.next("SOCK_Send", {8});
    EXPECT_EQ(GetParam().call(), GetParam().answered ? OFP_RC_SEND_FAILED : OFP_RC_FAILED);
}

TEST_P(Setter, NamesEveryFailureAndClosesTheChannel)
{
    expect_failures_handled({[] { GetParam().prepare(); }, GetParam().call},
                            GetParam().all_codes());
}

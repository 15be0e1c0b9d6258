#include "double/sweep.h"
#include "flow/rules.h"

using namespace test;

namespace {

constexpr uint32_t ok = OFP_RC_OK;
constexpr uint32_t failed = OFP_RC_FAILED;
constexpr uint32_t ports[2] = {1, 0xfffffffc};

class Group : public FlowTest {};

void expect_untouched() { EXPECT_EQ(platform.calls(), std::vector<Call>()); }

} // namespace

TEST_F(Group, SetSendsItsBucketsAndAwaitsABarrier)
{
    platform.reply(barrier_reply(0));
    EXPECT_EQ(OFP_SetGroup(4096, 9, 3, 2, ports), ok);
    ASSERT_EQ(platform.sent.size(), 1u);
    EXPECT_EQ(platform.sent[0],
              hex("0001 0004 50000003") + client_head_tlv(4096) +
                  hex("007a 0054 04 0f 0050 00000000 0000 03 00 00000009"
                      "0020 0000 00000001 ffffffff 00000000 0000 0010 00000001 0000 000000000000"
                      "0020 0000 fffffffc ffffffff 00000000 0000 0010 fffffffc 0000 000000000000"
                      "007a 0008 04 14 0008 00000000"));
}

TEST_F(Group, DelSendsNoBuckets)
{
    platform.reply(barrier_reply(0));
    EXPECT_EQ(OFP_DelGroup(4099, 0xffffff00), ok);
    ASSERT_EQ(platform.sent.size(), 1u);
    EXPECT_EQ(platform.sent[0], hex("0001 0004 50000004") + client_head_tlv(4099) +
                                    hex("007a 0014 04 0f 0010 00000000 0002 00 00 ffffff00"
                                        "007a 0008 04 14 0008 00000000"));
}

TEST_F(Group, ArgumentsOutOfRangeAreRefusedUnseen)
{
    for (uint16_t client : {uint16_t{4095}, uint16_t{4098}, uint16_t{4100}}) {
        EXPECT_EQ(OFP_SetGroup(client, 9, 0, 2, ports), failed);
        EXPECT_EQ(OFP_DelGroup(client, 9), failed);
    }
    for (uint32_t type : {1u, 2u, 4u, 0x100u, 0x103u})
        EXPECT_EQ(OFP_SetGroup(4096, 9, type, 2, ports), failed);
    EXPECT_EQ(OFP_SetGroup(4096, 0xffffff01, 0, 2, ports), failed);
    EXPECT_EQ(OFP_DelGroup(4096, 0xffffff01), failed);
    EXPECT_EQ(OFP_SetGroup(4096, 9, 0, 1, nullptr), failed);
    expect_untouched();
}

TEST_F(Group, HoldsUpTo254Ports)
{
    const std::vector<uint32_t> many(255, 1);
    EXPECT_EQ(OFP_SetGroup(4096, 9, 0, 255, many.data()), failed);
    expect_untouched();
    platform.reply(barrier_reply(0));
    EXPECT_EQ(OFP_SetGroup(4096, 9, 0, 254, many.data()), ok);
    EXPECT_EQ(platform.sent.at(0).size(), 8188u);
    platform.reply(barrier_reply(0));
    EXPECT_EQ(OFP_SetGroup(4096, 9, 0, 0, nullptr), ok);
}

TEST_F(Group, AnErrorBeforeTheBarrierFailsTheCall)
{
    platform.reply(error_reply(0, 6, 0));
    platform.reply(barrier_reply(0));
    EXPECT_EQ(OFP_SetGroup(4096, 9, 0, 2, ports), failed);
    EXPECT_EQ(platform.unread(), 0u);
}

TEST(GroupBeforeSmooth, IsRefused)
{
    in_fresh_process([] {
        EXPECT_EQ(OFP_SetGroup(4096, 9, 0, 2, ports), failed);
        EXPECT_EQ(OFP_DelGroup(4096, 9), failed);
        expect_untouched();
    });
}

TEST_F(Group, EveryFailureIsHandled)
{
    const auto prepare = [] { platform.reply(barrier_reply(0)); };
    Codes codes = setter_codes({{"SOCK_Send", failed}, {"SOCK_Recv", failed}});
    const Operation set = {prepare, [] { return OFP_SetGroup(4096, 9, 0, 2, ports); }};
    expect_failures_handled(set, codes);
    expect_same_datagrams_on_any_stack(set);
    codes["SOCK_SetOption"] = ok; // the device context of 4097 is set if it can be
    const Operation del = {prepare, [] { return OFP_DelGroup(4097, 9); }};
    expect_failures_handled(del, codes);
    expect_same_datagrams_on_any_stack(del);
}

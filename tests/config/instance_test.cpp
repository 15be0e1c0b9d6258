#include <cerrno>

#include "double/sweep.h"
#include "ofp/config.h"
#include "ofp/result.h"

using namespace test;

namespace {

class AddInstance : public PlatformTest {};

Bytes instance_message(const Bytes &id, std::initializer_list<const char *> tables)
{
    Bytes datagram = message(0x50000007, {tlv(124, id + hex("0002 00000000")), // filter of kind 2
                                          tlv(126, hex("00000000"))});         // its parameter
    for (const char *table : tables)
        datagram += tlv(69, hex(table) + hex("000000 00000002")); // table of kind 2
    return datagram;
}

} // namespace

TEST_F(AddInstance, SendsFiveDefaultTables)
{
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_AddInstance(0x1001), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent,
              std::vector({instance_message(hex("1001"), {"0a", "0b", "14", "15", "1e"})}));
}

TEST_F(AddInstance, Instance4101HasTableZeroAlone)
{
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_AddInstance(4101), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({instance_message(hex("1005"), {"00"})}));
}

TEST_F(AddInstance, TheIdTravelsAs16Bits)
{
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_AddInstance(0x10000 + 4101), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent,
              std::vector({instance_message(hex("1005"), {"0a", "0b", "14", "15", "1e"})}));
}

TEST_F(AddInstance, ReturnsTheAgentsCodeAndZeroWithoutOne)
{
    platform.reply(result_reply(0x40010010));
    EXPECT_EQ(OFP_AddInstance(1), uint32_t{OFP_RC_STATE});
    platform.reply(message(0x20000001));
    EXPECT_EQ(OFP_AddInstance(1), uint32_t{OFP_RC_OK});
    platform.reply(message(0x20000002, {tlv(2, hex("40010010"))}));
    EXPECT_EQ(OFP_AddInstance(1), uint32_t{OFP_RC_OK});
}

TEST_F(AddInstance, HandlesFailures)
{
    const auto run = [] { return OFP_AddInstance(1); };
    const Codes codes = setter_codes({{"SOCK_Connect", OFP_RC_NO_REPLY}});
    const Operation running{[] { platform.reply(result_reply(0)); }, run};
    expect_failures_handled(running, codes);
    expect_same_datagrams_on_any_stack(running);
    const auto stopped = [] {
        platform.nodes.push_back({.id = 8});
        platform.daemon_runs(false);
        platform.reply(result_reply(0));
    };
    expect_failures_handled({stopped, run}, codes);
}

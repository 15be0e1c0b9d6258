#include <gtest/gtest.h>

#include "flow/rules.h"

using namespace test;

namespace {

constexpr uint32_t ports[3] = {1, 0xfffffffc, 0x01020304};

Bytes bucket(uint32_t port)
{
    return hex("0020 0000") + be32(port) + hex("ffffffff 00000000") + // watch port and group
           hex("0000 0010") + be32(port) + hex("0000 000000000000");  // output
}

class GroupMod : public PlatformTest {
protected:
    Bytes encoded(uint32_t count)
    {
        Bytes out(8192, 0xee);
        out.resize(ofp_encode_GroupMod(group(), count, ports, out.size(), out.data()));
        return out;
    }
    const uint8_t *group() const { return reinterpret_cast<const uint8_t *>(&record); }

    OfpGroupMod record = {.header = {.version = 9, .type = 9, .length = 9, .xid = 9},
                          .command = 0,
                          .type = 3,
                          .group_id = 0x0a0b0c0d};
    uint8_t head[16] = {1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 16};
    const Bytes head_tlv = hex("0079 0010 00000001 00000002 00000003 0004 1000");
    const Bytes barrier = hex("007a 0008 04 14 0008 00000000");
};

} // namespace

TEST_F(GroupMod, ThreePortsAreThreeBuckets)
{
    const Bytes group_mod = encoded(3);
    EXPECT_EQ(group_mod, hex("007a 0074 04 0f 0070 00000000 0000 03 00 0a0b0c0d") +
                             bucket(ports[0]) + bucket(ports[1]) + bucket(ports[2]));
    EXPECT_EQ(group_mod.size(), 116u);
}

TEST_F(GroupMod, TheTlvLengthCountsItsHeader)
{
    for (uint32_t count : {0u, 1u, 3u}) {
        const Bytes group_mod = encoded(count);
        EXPECT_EQ(group_mod.u16(2), group_mod.size());
        EXPECT_EQ(group_mod.u16(6), group_mod.size() - 4);
        EXPECT_EQ(group_mod.size(), 20u + 32 * count);
    }
}

TEST_F(GroupMod, AModifyKeepsItsBuckets)
{
    record.command = 1;
    EXPECT_EQ(encoded(1),
              hex("007a 0034 04 0f 0030 00000000 0001 03 00 0a0b0c0d") + bucket(ports[0]));
}

TEST_F(GroupMod, ADeleteHasNoBuckets)
{
    record.command = 2;
    EXPECT_EQ(encoded(3), hex("007a 0014 04 0f 0010 00000000 0002 03 00 0a0b0c0d"));
}

TEST_F(GroupMod, APaddingByteOfTheRecordTravels)
{
    record.reserved_11 = 0x55;
    EXPECT_EQ(encoded(0), hex("007a 0014 04 0f 0010 00000000 0000 03 55 0a0b0c0d"));
}

TEST_F(GroupMod, ASetDatagram)
{
    Bytes out(8192, 0xee);
    out.resize(OFP_encode_SetGroup(head, group(), 1, ports, out.size(), out.data()));
    EXPECT_EQ(out, hex("0001 0004 50000003") + head_tlv +
                       hex("007a 0034 04 0f 0030 00000000 0000 03 00 0a0b0c0d") + bucket(ports[0]) +
                       barrier);
}

TEST_F(GroupMod, ADeleteDatagram)
{
    Bytes out(8192, 0xee);
    record.command = 2;
    record.type = 0;
    out.resize(OFP_encode_DelGroup(head, group(), out.size(), out.data()));
    EXPECT_EQ(out, hex("0001 0004 50000004") + head_tlv +
                       hex("007a 0014 04 0f 0010 00000000 0002 00 00 0a0b0c0d") + barrier);
}

TEST_F(GroupMod, TheLargestGroupThatADatagramHolds)
{
    const std::vector<uint32_t> many(254, 1);
    Bytes out(8192);
    EXPECT_EQ(OFP_encode_SetGroup(head, group(), 254, many.data(), out.size(), out.data()), 8188u);
}

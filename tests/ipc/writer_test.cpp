#include "ipc/writer.h"

#include "double/platform.h"

using namespace test;

namespace {

class Writer : public PlatformTest {};

struct Hole {
    uint8_t byte;
    uint32_t word;
};
static_assert(ofp::WireRecord<OfpEchoTime>);
static_assert(ofp::WireRecord<OfpMibTableInfo>);
static_assert(!ofp::WireRecord<Hole>, "padding of the compiler must not travel");

Bytes written(const ofp::Writer &writer)
{
    return bytes_of(writer.bytes().data, writer.bytes().size);
}

} // namespace

TEST_F(Writer, PutsTlvsOneBehindTheOther)
{
    uint8_t buffer[64];
    ofp::Writer writer(buffer, sizeof buffer);
    writer.head(6).tlv(OFP_TLV_EchoTime, OfpEchoTime{.interval = 30, .instance_id = 1});
    writer.with([](uint64_t room, uint8_t *out) -> uint64_t {
        EXPECT_EQ(room, 64u - 20);
        *out = 0xaa;
        return 1;
    });
    EXPECT_TRUE(writer.whole());
    EXPECT_EQ(written(writer), hex("0001 0004 00000006 0008 0008 0000001e 0001 0000 aa"));
}

TEST_F(Writer, LeavesOutWhatDoesNotFitAndGoesOn)
{
    uint8_t buffer[16];
    ofp::Writer writer(buffer, sizeof buffer);
    writer.head(6);
    EXPECT_TRUE(writer.whole());
    writer.tlv(OFP_TLV_EchoTime, OfpEchoTime{});
    EXPECT_FALSE(writer.whole());
    writer.tlv(OFP_TLV_InstanceID, OfpInstanceID{.instance_id = 1});
    EXPECT_FALSE(writer.whole());
    EXPECT_EQ(written(writer), hex("0001 0004 00000006 0004 0004 0001 0000"));
}

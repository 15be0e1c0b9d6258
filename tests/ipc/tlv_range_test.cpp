#include "ipc/tlv_range.h"

#include "double/platform.h"

using namespace test;

namespace {

class TlvRange : public PlatformTest {};

std::string walk(const Bytes &bytes)
{
    std::string found;
    for (const ofp::Tlv &tlv : ofp::tlvs({bytes.data(), bytes.size()}))
        found += std::to_string(tlv.type) + ":" + to_hex(bytes_of(tlv.value, tlv.length)) + ";";
    return found;
}

} // namespace

TEST_F(TlvRange, VisitsTlvsInOrder)
{
    EXPECT_EQ(walk(tlv(1, hex("0102")) + tlv(2, {}) + tlv(3, hex("03"))), "1:0102;2:;3:03;");
}

TEST_F(TlvRange, EndsOnTheFirstTlvThatIsNotWhole)
{
    EXPECT_EQ(walk({}), "");
    EXPECT_EQ(walk(hex("000100")), "");
    EXPECT_EQ(walk(tlv(1, hex("01")) + hex("0002 0005 01020304")), "1:01;");
    EXPECT_TRUE(ofp::tlvs({nullptr, 0}).empty());
}

TEST_F(TlvRange, DoesNotBelieveAPlatformThatPointsElsewhere)
{
    const Bytes bytes = tlv(1, hex("01"));
    platform.next("STLV_Get", {5}); // five bytes, and no value
    EXPECT_EQ(walk(bytes), "");
}

#include "ipc/event.h"

#include <cstring>

#include "double/platform.h"
#include "ofp.h"

using namespace test;

namespace {

OfpCtrlEvent seen;
uint32_t calls;

uint32_t take(uint32_t type, void *record, uint32_t)
{
    std::memcpy(&seen, record, type == OFP_EVENT_CTRL_STATUS ? sizeof(uint32_t) : sizeof seen);
    ++calls;
    return type + 100;
}

uint32_t decode(uint32_t type, const Bytes &data)
{
    seen = {};
    return ofp::decode_event(type, {data.data(), data.size()}, take);
}

// A controller record: address type at 16, address at 20, event value at 184.
Bytes controller(uint16_t address_type)
{
    Bytes value(192, 0);
    value[17] = static_cast<uint8_t>(address_type);
    for (uint8_t i = 0; i < 16; ++i)
        value[20u + i] = static_cast<uint8_t>(0xa0 + i);
    value[184] = 0x12;
    value[185] = 0x34;
    return tlv(6, value);
}

class Event : public PlatformTest {
protected:
    Event() { calls = 0; }
};

} // namespace

TEST_F(Event, AnIpv4ControllerHasTwelveZeroBytesOfAddress)
{
    EXPECT_EQ(decode(4, tlv(4, hex("0102 0000")) + controller(2)), 104u);
    EXPECT_EQ(seen.address_type, 2);
    EXPECT_EQ(bytes_of(seen.address), hex("a0a1a2a3") + Bytes(12, 0));
    EXPECT_EQ(seen.value, 0x1234);
    EXPECT_EQ(seen.zero, 0);
    EXPECT_EQ(seen.instance_id, 0x0102);
}

TEST_F(Event, AnyOtherAddressTypeTakesAllWords)
{
    EXPECT_EQ(decode(2, controller(10)), 102u);
    EXPECT_EQ(bytes_of(seen.address), hex("a0a1a2a3a4a5a6a7a8a9aaabacadaeaf"));
}

TEST_F(Event, AnIpv4ControllerBehindAnotherKeepsTheOtherWords)
{
    decode(8, controller(10) + controller(2));
    EXPECT_EQ(bytes_of(seen.address), hex("a0a1a2a3a4a5a6a7a8a9aaabacadaeaf"));
    EXPECT_EQ(seen.address_type, 2);
}

TEST_F(Event, UnknownTlvsAreSkippedAndNothingIsNeeded)
{
    EXPECT_EQ(decode(2, tlv(99, hex("0102")) + tlv(4, hex("0007 0000"))), 102u);
    EXPECT_EQ(seen.instance_id, 7);
    EXPECT_EQ(decode(2, hex("0004")), 102u);
    EXPECT_EQ(seen.instance_id, 0);
    EXPECT_EQ(calls, 2u);
}

TEST_F(Event, OnlyTheFourTypesHaveADecoder)
{
    for (uint32_t type = 0; type <= 64; ++type) {
        calls = 0;
        decode(type, tlv(4, hex("0007 0000")));
        const bool known = type == 2 || type == 4 || type == 8 || type == 16;
        EXPECT_EQ(calls, known ? 1u : 0u) << type;
    }
}

TEST_F(Event, EveryTruncationIsTakenAsFarAsItGoes)
{
    const Bytes whole = tlv(4, hex("0007 0000")) + controller(2);
    for (size_t length = 0; length < whole.size(); ++length) {
        const Bytes part = whole.slice(0, length);
        EXPECT_EQ(decode(2, part), 102u);
        EXPECT_EQ(seen.address_type, 0);
        EXPECT_EQ(seen.instance_id, length >= 8 ? 7 : 0);
    }
}

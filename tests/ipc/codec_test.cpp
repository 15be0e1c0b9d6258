#include "ofp/codec.h"

#include <cstring>
#include <memory>
#include <random>

#include "double/platform.h"
#include "ofp/message.h"
#include "ofp/result.h"

using namespace test;

namespace {

class Codec : public PlatformTest {};

constexpr uint32_t echo_time = OFP_TLV_EchoTime;
const OfpEchoTime thirty_seconds{.interval = 30, .instance_id = 0x1001};

// A copy of exactly its size, so that a sanitizer sees a read beyond it.
struct Exact {
    explicit Exact(const Bytes &bytes) : size(bytes.size()), data(new uint8_t[size])
    {
        std::copy(bytes.begin(), bytes.end(), data.get());
    }
    size_t size;
    std::unique_ptr<uint8_t[]> data;
};

} // namespace

TEST_F(Codec, SetTlvDataConvertsACopyAndLeavesTheCallersRecord)
{
    OfpEchoTime time = thirty_seconds;
    const Bytes before = bytes_of(time);
    Bytes buffer(16, 0xee);
    EXPECT_EQ(OFP_msg_SetTlvData(buffer.data(), buffer.size(), echo_time, sizeof time, &time), 12u);
    EXPECT_EQ(buffer, hex("0008 0008"          // TLV 8, 8 bytes
                          "0000001e 1001 0000" // 30 s, instance 4097
                          "eeeeeeee"));
    EXPECT_EQ(bytes_of(time), before);
}

TEST_F(Codec, SetTlvDataThatDoesNotFitWritesNothing)
{
    Bytes buffer(12, 0xee);
    for (uint64_t space = 0; space < 12; ++space)
        EXPECT_EQ(OFP_msg_SetTlvData(buffer.data(), space, echo_time, 8, &thirty_seconds), 0u);
    EXPECT_EQ(buffer, Bytes(12, 0xee));
    EXPECT_EQ(OFP_msg_SetTlvData(buffer.data(), 12, echo_time, 8, &thirty_seconds), 12u);
}

TEST_F(Codec, SetTlvDataTakesAtMost8192Bytes)
{
    const Bytes value = counting(9000);
    Bytes buffer(9004, 0xee);
    EXPECT_EQ(
        OFP_msg_SetTlvData(buffer.data(), buffer.size(), OFP_TLV_FlowEntry, 8193, value.data()),
        0u);
    EXPECT_EQ(buffer, Bytes(9004, 0xee));
    EXPECT_EQ(
        OFP_msg_SetTlvData(buffer.data(), buffer.size(), OFP_TLV_FlowEntry, 8192, value.data()),
        8196u);
    EXPECT_EQ(buffer.slice(0, 8196), hex("007a 2000") + value.slice(0, 8192));
    EXPECT_EQ(OFP_msg_SetTlvData(buffer.data(), buffer.size(), 1, UINT64_MAX, value.data()), 0u);
}

TEST_F(Codec, SetTlvDataUsesSpaceBeyond32Bits)
{
    Bytes buffer(12);
    EXPECT_EQ(OFP_msg_SetTlvData(buffer.data(), uint64_t{1} << 32, echo_time, 8, &thirty_seconds),
              12u);
}

TEST_F(Codec, SetTlvDataConvertsAValueShorterThanItsRecordWithinItsLength)
{
    const uint32_t interval = 30;
    Bytes buffer(12, 0xee);
    EXPECT_EQ(OFP_msg_SetTlvData(buffer.data(), 12, echo_time, 4, &interval), 8u);
    EXPECT_EQ(buffer, hex("0008 0004 0000001e eeeeeeee"));
    EXPECT_EQ(OFP_msg_SetTlvData(buffer.data(), 12, echo_time, 0, nullptr), 4u);
    EXPECT_EQ(buffer, hex("0008 0000 0000001e eeeeeeee"));
}

TEST_F(Codec, SetMsgHeadWritesTheCode)
{
    Bytes buffer(8);
    EXPECT_EQ(OFP_msg_SetMsgHead(buffer.data(), 8, OFP_MSG_GET_SUMMARY), 8u);
    EXPECT_EQ(buffer, hex("0001 0004 10000017"));
    EXPECT_EQ(OFP_msg_SetMsgHead(buffer.data(), 7, 5), 0u);
}

TEST_F(Codec, EncapBasicMsgWritesHeadAndOneTlv)
{
    Bytes buffer(20);
    EXPECT_EQ(OFP_msg_EncapBasicMsg(buffer.data(), 20, OFP_MSG_SET_ECHO_TIME, echo_time, 8,
                                    &thirty_seconds),
              20u);
    EXPECT_EQ(buffer, hex("0001 0004 00000006"              // set echo time
                          "0008 0008 0000001e 1001 0000")); // 30 s, instance 4097
    for (uint64_t space = 0; space < 20; ++space)
        EXPECT_EQ(OFP_msg_EncapBasicMsg(buffer.data(), space, 6, echo_time, 8, &thirty_seconds), 0u)
            << space;
}

TEST_F(Codec, GetTlvDataTakesTheFirstTlvOfTheType)
{
    const Bytes buffer = tlv(8, hex("0000001e 1001 0000")) + tlv(8, hex("000000ff 1002 0000"));
    OfpEchoTime time{};
    EXPECT_EQ(OFP_msg_GetTlvData(buffer.data(), buffer.size(), echo_time, sizeof time, &time), 12u);
    EXPECT_EQ(bytes_of(time), bytes_of(thirty_seconds));
    EXPECT_EQ(OFP_msg_GetTlvData(buffer.data(), buffer.size(), echo_time, 0, nullptr), 12u);
}

TEST_F(Codec, GetTlvDataOfAnotherTypeLeavesTheDestination)
{
    const Bytes buffer = tlv(9, hex("0000001e 1001 0000")) + tlv(8, hex("000000ff 1002 0000"));
    Bytes destination(8, 0xee);
    EXPECT_EQ(OFP_msg_GetTlvData(buffer.data(), buffer.size(), echo_time, 8, destination.data()),
              0u);
    EXPECT_EQ(destination, Bytes(8, 0xee));
    // A type is 16 bits on the wire: no larger one is ever there.
    EXPECT_EQ(OFP_msg_GetTlvData(buffer.data(), buffer.size(), 0x10009, 8, destination.data()), 0u);
}

TEST_F(Codec, GetTlvDataOfAShorterValueConvertsTheWholeRecord)
{
    const Bytes buffer = tlv(8, hex("0000001e"));
    OfpEchoTime time{.interval = 7, .instance_id = 0x1234};
    EXPECT_EQ(OFP_msg_GetTlvData(buffer.data(), buffer.size(), echo_time, sizeof time, &time), 8u);
    EXPECT_EQ(time.interval, 30u);
    EXPECT_EQ(time.instance_id, 0x3412); // what the caller had, converted as it stood
}

TEST_F(Codec, GetTlvDataOfALongerValueCopiesTheSize)
{
    const Bytes buffer = tlv(8, hex("0000001e 1001 0000 99999999"));
    Bytes destination(12, 0xee);
    EXPECT_EQ(OFP_msg_GetTlvData(buffer.data(), buffer.size(), echo_time, 8, destination.data()),
              16u);
    EXPECT_EQ(destination, bytes_of(thirty_seconds) + Bytes(4, 0xee));
}

TEST_F(Codec, GetTlvDataNeedsAWholeTlv)
{
    const Bytes buffer = tlv(8, hex("0000001e 1001 0000"));
    Bytes destination(8, 0xee);
    for (size_t size = 0; size < buffer.size(); ++size) {
        const Exact part(buffer.slice(0, size));
        EXPECT_EQ(OFP_msg_GetTlvData(part.data.get(), size, echo_time, 8, destination.data()), 0u);
        EXPECT_EQ(OFP_msg_GetTlvDataByType(part.data.get(), size, echo_time, 8, destination.data()),
                  uint32_t{OFP_RC_NOT_FOUND});
    }
    EXPECT_EQ(destination, Bytes(8, 0xee));
}

TEST_F(Codec, GetTlvDataByTypeScansFromTheStart)
{
    const Bytes buffer =
        message(OFP_MSG_EVENT, {tlv(190, hex("00000002")), tlv(8, hex("0000001e 1001 0000")),
                                tlv(8, hex("000000ff 1002 0000"))});
    OfpEchoTime time{};
    EXPECT_EQ(OFP_msg_GetTlvDataByType(buffer.data(), buffer.size(), echo_time, sizeof time, &time),
              uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(time), bytes_of(thirty_seconds));
}

TEST_F(Codec, GetTlvDataByTypeWithoutTheTypeLeavesTheDestination)
{
    const Bytes buffer = message(OFP_MSG_EVENT, {tlv(190, hex("00000002"))});
    Bytes destination(8, 0xee);
    EXPECT_EQ(
        OFP_msg_GetTlvDataByType(buffer.data(), buffer.size(), echo_time, 8, destination.data()),
        uint32_t{OFP_RC_NOT_FOUND});
    EXPECT_EQ(OFP_msg_GetTlvDataByType(buffer.data(), 0, echo_time, 8, destination.data()),
              uint32_t{OFP_RC_NOT_FOUND});
    EXPECT_EQ(destination, Bytes(8, 0xee));
}

TEST_F(Codec, GetTlvDataByTypeCountsModulo65536BehindTheFirstTlv)
{
    const Exact buffer(tlv(4, hex("10010000")) + tlv(8, hex("0000001e 1001 0000")) + Bytes(65536));
    OfpEchoTime time{};
    OfpInstanceID instance{};
    auto find = [&](uint64_t available) {
        return OFP_msg_GetTlvDataByType(buffer.data.get(), available, echo_time, sizeof time,
                                        &time);
    };
    EXPECT_EQ(find(65536 + 19), uint32_t{OFP_RC_NOT_FOUND});
    EXPECT_EQ(find(65536 + 20), uint32_t{OFP_RC_OK});
    EXPECT_EQ(find(65536), uint32_t{OFP_RC_NOT_FOUND});
    EXPECT_EQ(OFP_msg_GetTlvDataByType(buffer.data.get(), 65536, OFP_TLV_InstanceID,
                                       sizeof instance, &instance),
              uint32_t{OFP_RC_OK});
}

TEST_F(Codec, GetMsgHeadStoresTheCode)
{
    const Bytes buffer = message(0x20000001);
    uint32_t code = 7;
    EXPECT_EQ(OFP_msg_GetMsgHead(buffer.data(), 8, &code), 8u);
    EXPECT_EQ(code, 0x20000001u);
    EXPECT_EQ(OFP_msg_GetMsgHead(buffer.data(), 8, nullptr), 8u);
    EXPECT_EQ(OFP_msg_GetMsgHead(buffer.data(), 7, &code), 0u);
    const Bytes other = tlv(2, hex("00000009"));
    EXPECT_EQ(OFP_msg_GetMsgHead(other.data(), other.size(), &code), 0u);
    EXPECT_EQ(code, 0x20000001u);
}

TEST_F(Codec, DecapBasicMsgWantsTheCodeAndTheTlvRightBehindIt)
{
    const Bytes value = tlv(8, hex("0000001e 1001 0000"));
    const Bytes good = message(0x20000020, {value, tlv(9, {})});
    OfpEchoTime time{};
    EXPECT_EQ(OFP_msg_DecapBasicMsg(good.data(), good.size(), 0x20000020, echo_time, 8, &time),
              20u);
    EXPECT_EQ(bytes_of(time), bytes_of(thirty_seconds));

    const Bytes untouched(8, 0xee);
    for (const Bytes &bad : {message(0x20000021, {value}), message(0x20000020),
                             message(0x20000020, {tlv(9, {}), value}), value, Bytes()}) {
        Bytes destination = untouched;
        EXPECT_EQ(OFP_msg_DecapBasicMsg(bad.data(), bad.size(), 0x20000020, echo_time, 8,
                                        destination.data()),
                  0u);
        EXPECT_EQ(destination, untouched);
    }
}

TEST_F(Codec, GetByteSwapDataCopiesAndConverts)
{
    OfpEchoTime time{};
    const Bytes value = hex("0000001e 1001 0000 9999");
    EXPECT_EQ(OFP_msg_GetByteSwapData(value.data(), 10, echo_time, sizeof time, &time), 8u);
    EXPECT_EQ(bytes_of(time), bytes_of(thirty_seconds));
    EXPECT_EQ(OFP_msg_GetByteSwapData(value.data(), 4, echo_time, sizeof time, &time), 4u);
    EXPECT_EQ(time.interval, 30u);
}

TEST_F(Codec, ByteSwapDataConvertsInPlace)
{
    OfpEchoTime time = thirty_seconds;
    OFP_msg_ByteSwapData(echo_time, &time);
    EXPECT_EQ(bytes_of(time), hex("0000001e 1001 0000"));
    OFP_msg_ByteSwapData(9999, &time);
    EXPECT_EQ(bytes_of(time), hex("0000001e 1001 0000"));
}

TEST_F(Codec, PreparesRecords)
{
    OfpPktContext context;
    std::memset(&context, 0xee, sizeof context);
    OFP_msg_InitPktContextTlv(&context);
    EXPECT_EQ(bytes_of(context), hex("80") + Bytes(71) + hex("ffffffff") + Bytes(1256 - 76));

    OfpInstTbl table;
    std::memset(&table, 0xee, sizeof table);
    OFP_msg_InitInstTblTlv(&table);
    EXPECT_EQ(bytes_of(table), hex("0000ff00"));

    OfpCtrl controller;
    std::memset(&controller, 0xee, sizeof controller);
    OFP_msg_CtrlTlvInit(&controller);
    EXPECT_EQ(bytes_of(controller), Bytes(192));
}

// Whatever bytes arrive, every reader stays inside them and inside the destination.
TEST_F(Codec, ReadersSurviveAnyBytes)
{
    std::mt19937 random(20240229);
    for (int round = 0; round < 3000; ++round) {
        Bytes bytes(random() % 64);
        for (uint8_t &byte : bytes)
            byte = static_cast<uint8_t>(random() % 4 ? random() % 9 : random());
        const Exact exact(bytes);
        const uint8_t *data = exact.data.get();
        Bytes destination(16, 0xee);
        uint32_t code = 0;
        EXPECT_LE(OFP_msg_GetTlvData(data, exact.size, echo_time, 8, destination.data()),
                  exact.size);
        EXPECT_LE(OFP_msg_GetMsgHead(data, exact.size, &code), exact.size);
        EXPECT_LE(OFP_msg_DecapBasicMsg(data, exact.size, 6, echo_time, 8, destination.data()),
                  exact.size);
        const uint32_t found =
            OFP_msg_GetTlvDataByType(data, exact.size, echo_time, 8, destination.data());
        EXPECT_TRUE(found == OFP_RC_OK || found == OFP_RC_NOT_FOUND);
        EXPECT_EQ(destination.slice(8), Bytes(8, 0xee));
    }
}

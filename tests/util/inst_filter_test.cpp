#include <cstring>
#include <random>

#include "double/platform.h"
#include "ofp/codec.h"
#include "ofp/util.h"

using namespace test;

namespace {

class InstFilter : public PlatformTest {};

constexpr uint16_t every_kind[] = {0, 1, 2, 3, 4, 5, 6, 9, 0xffff};

bool has_pair(uint16_t kind) { return kind == 1 || kind == 4; }
bool has_one(uint16_t kind) { return kind == 2 || kind == 5; }

OfpInstFilter filter_of(uint16_t kind)
{
    OfpInstFilter filter{};
    filter.instance_id = 0x1001;
    filter.filter_kind = kind;
    filter.ext = 0x01020304;
    if (has_one(kind)) {
        filter.param = 0xa1b2c3d4;
    } else if (has_pair(kind)) {
        filter.param_a = 10;
        filter.param_b = 20;
    }
    return filter;
}

Bytes encap(const OfpInstFilter &filter, size_t room = 64)
{
    Bytes buffer(64, 0xee);
    const uint64_t size = OFP_util_EncapInstFilterTLV(&filter, room, buffer.data());
    EXPECT_LE(size, room);
    EXPECT_EQ(buffer.slice(room), Bytes(64 - room, 0xee));
    return buffer.slice(0, size);
}

} // namespace

TEST_F(InstFilter, EncapWritesTheInstanceForEveryKind)
{
    for (uint8_t kind : hex("00030609"))
        EXPECT_EQ(encap(filter_of(kind)),
                  hex("007c 0008 1001") + Bytes({0, kind}) + hex("01020304"));
}

TEST_F(InstFilter, EncapWritesTwoParametersForKinds1And4)
{
    for (uint8_t kind : hex("0104"))
        EXPECT_EQ(encap(filter_of(kind)), hex("007c 0008 1001") + Bytes({0, kind}) +
                                              hex("01020304"
                                                  "007d 0008 00000000 000a 0014"));
}

TEST_F(InstFilter, EncapWritesOneParameterForKinds2And5)
{
    for (uint8_t kind : hex("0205"))
        EXPECT_EQ(encap(filter_of(kind)),
                  hex("007c 0008 1001") + Bytes({0, kind}) + hex("01020304 007e 0004 a1b2c3d4"));
}

TEST_F(InstFilter, EncapLeavesOutWhatDoesNotFit)
{
    const Bytes whole = encap(filter_of(4));
    for (size_t room = 0; room <= whole.size(); ++room)
        EXPECT_EQ(encap(filter_of(4), room),
                  room < 12 ? Bytes() : whole.slice(0, room < 24 ? 12 : 24));
}

TEST_F(InstFilter, RoundTripsEveryKind)
{
    for (uint16_t kind : every_kind) {
        const Bytes buffer = encap(filter_of(kind)) + tlv(69, Bytes(8));
        OfpInstFilter filter;
        std::memset(&filter, 0xee, sizeof filter);
        EXPECT_EQ(OFP_util_DecapInstFilterTLV(buffer.data(), buffer.size(), &filter),
                  kind > 5 ? 0u : buffer.size() - 12);
        EXPECT_EQ(bytes_of(filter), bytes_of(filter_of(kind))) << kind;
    }
}

TEST_F(InstFilter, KindThreeReadsBackWithoutParameters)
{
    OfpInstFilter filter = filter_of(3);
    filter.param_a = 1;
    filter.param_b = 2;
    const Bytes buffer = encap(filter);
    EXPECT_EQ(buffer.size(), 12u);
    EXPECT_EQ(OFP_util_DecapInstFilterTLV(buffer.data(), buffer.size(), &filter), 12u);
    EXPECT_EQ(filter.param, 0u);
}

TEST_F(InstFilter, DecapOfAnUnknownKindIsZeroAndKeepsTheValues)
{
    const Bytes buffer = tlv(124, hex("1001 0009 01020304"));
    OfpInstFilter filter;
    EXPECT_EQ(OFP_util_DecapInstFilterTLV(buffer.data(), buffer.size(), &filter), 0u);
    EXPECT_EQ(filter.instance_id, 0x1001);
    EXPECT_EQ(filter.filter_kind, 9);
    EXPECT_EQ(filter.ext, 0x01020304u);
}

TEST_F(InstFilter, DecapWithoutAFilterClearsIt)
{
    const Bytes buffer = tlv(69, Bytes(8));
    OfpInstFilter filter;
    std::memset(&filter, 0xee, sizeof filter);
    EXPECT_EQ(OFP_util_DecapInstFilterTLV(buffer.data(), buffer.size(), &filter), 0u);
    EXPECT_EQ(bytes_of(filter), Bytes(12));
}

TEST_F(InstFilter, DecapWithoutTheParametersConsumesTheInstanceAlone)
{
    for (uint8_t kind : hex("01020405")) {
        const Bytes buffer = tlv(124, hex("1001 00") + Bytes({kind}) + hex("01020304")) +
                             tlv(69, hex("0102030405060708"));
        OfpInstFilter filter;
        EXPECT_EQ(OFP_util_DecapInstFilterTLV(buffer.data(), buffer.size(), &filter), 12u);
        EXPECT_EQ(filter.param, 0u);
    }
}

TEST_F(InstFilter, PatchAndSplitCarryTheValuesWithoutHeaders)
{
    for (uint16_t kind : every_kind) {
        const OfpInstFilter filter = filter_of(kind);
        const size_t size = has_pair(kind) ? 16 : has_one(kind) ? 12 : 8;
        Bytes compact(20, 0xee);
        EXPECT_EQ(OFP_util_PatchInstFilterTLV(&filter, compact.size(), compact.data()), size);
        EXPECT_EQ(compact.slice(size), Bytes(20 - size, 0xee));

        OfpInstFilter back;
        std::memset(&back, 0xee, sizeof back);
        EXPECT_EQ(OFP_util_SplitInstFilterTLV(compact.data(), size, &back), size);
        EXPECT_EQ(bytes_of(back), bytes_of(filter)) << kind;
    }
}

TEST_F(InstFilter, PatchIsInHostOrderWithAZeroWordForPairs)
{
    Bytes compact(16, 0xee);
    const OfpInstFilter pair = filter_of(4), one = filter_of(5);
    OFP_util_PatchInstFilterTLV(&pair, 16, compact.data());
    EXPECT_EQ(compact, hex("0110 0400 04030201 00000000 0a00 1400"));
    OFP_util_PatchInstFilterTLV(&one, 16, compact.data());
    EXPECT_EQ(compact.slice(0, 12), hex("0110 0500 04030201 d4c3b2a1"));
}

TEST_F(InstFilter, PatchAndSplitStayInsideTheirBuffers)
{
    const OfpInstFilter filter = filter_of(4);
    for (size_t room = 0; room < 16; ++room) {
        Bytes compact(16, 0xee);
        EXPECT_EQ(OFP_util_PatchInstFilterTLV(&filter, room, compact.data()), 16u);
        EXPECT_EQ(compact.slice(room), Bytes(16 - room, 0xee));

        Bytes exact = compact.slice(0, room);
        exact.shrink_to_fit();
        OfpInstFilter back;
        EXPECT_EQ(OFP_util_SplitInstFilterTLV(exact.data(), room, &back), room < 3 ? 8u : 16u);
    }
}

TEST_F(InstFilter, PassbyCountsTheRunOfOneType)
{
    const Bytes run = tlv(69, Bytes(8)) + tlv(69, Bytes(8)) + tlv(69, Bytes(8));
    const Bytes buffer = run + tlv(70, Bytes(8)) + tlv(69, Bytes(8));
    EXPECT_EQ(OFP_util_PassbyTLV(buffer.data(), buffer.size(), 69), 36u);
    EXPECT_EQ(OFP_util_PassbyTLV(run.data(), run.size(), 69), 36u);
    EXPECT_EQ(OFP_util_PassbyTLV(run.data(), run.size() - 1, 69), 24u);
    EXPECT_EQ(OFP_util_PassbyTLV(buffer.data(), buffer.size(), 70), 0u);
    EXPECT_EQ(OFP_util_PassbyTLV(buffer.data(), 0, 69), 0u);
    const Bytes empty = tlv(69, {}) + tlv(69, {});
    EXPECT_EQ(OFP_util_PassbyTLV(empty.data(), empty.size(), 69), 8u);
}

TEST_F(InstFilter, ReadingSurvivesAnyBytes)
{
    std::mt19937 random(11);
    for (int round = 0; round < 2000; ++round) {
        Bytes buffer = encap(filter_of(every_kind[random() % 9]));
        buffer[random() % buffer.size()] = static_cast<uint8_t>(random());
        buffer.resize(random() % (buffer.size() + 1));
        buffer.shrink_to_fit();
        OfpInstFilter filter;
        EXPECT_LE(OFP_util_DecapInstFilterTLV(buffer.data(), buffer.size(), &filter),
                  buffer.size());
        EXPECT_LE(OFP_util_PassbyTLV(buffer.data(), buffer.size(), 124), buffer.size());
    }
}

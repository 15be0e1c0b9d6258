// From TLV type to conversion.
#include <map>
#include <set>

#include "wire/dispatch_table.h"
#include "wire/record.h"
#include "wire/swap_members.h"

using test::Bytes;
using test::hex;

namespace {

class ByteSwap : public test::PlatformTest {};

Bytes swapped(uint32_t type, Bytes value)
{
    OFP_bswap_ByteSwap(type, value.data());
    return value;
}

TEST_F(ByteSwap, EveryTypeIsCataloguedOnce)
{
    std::map<uint32_t, unsigned> listed;
    for (const auto *records : {&wire::control_records, &wire::flow_records})
        for (const auto &record : *records)
            ++listed[record.type];
    listed.erase(wire::no_type);
    ++listed[OFP_TLV_VlanBitmap]; // converted by the platform
    EXPECT_EQ(listed.size(), 235u);
    EXPECT_EQ(listed.begin()->first, 1u);
    EXPECT_EQ(listed.rbegin()->first, 235u);
    for (auto [type, times] : listed)
        EXPECT_EQ(times, 1u) << type;
}

TEST_F(ByteSwap, TlvNamesAreThoseOfTheCatalogue)
{
    std::map<uint32_t, std::string> names;
#define ROW(number, name) names[number] = #name;
    OFP_TLV_TYPES(ROW)
#undef ROW
    EXPECT_EQ(names.size(), 235u);
    EXPECT_EQ(names[90], "VlanBitmap");
    for (const auto *records : {&wire::control_records, &wire::flow_records})
        for (const auto &record : *records)
            if (record.type != wire::no_type) {
                EXPECT_EQ(names[record.type], record.name);
            }
}

TEST_F(ByteSwap, UnknownTypesConvertNothing)
{
    const Bytes value = test::counting(64);
    for (uint32_t type : {0u, 236u, 255u, 256u, 257u, 65535u, 65536u + 8, 0x80000008u, 0xffffffffu})
        EXPECT_EQ(swapped(type, value), value) << type;
}

TEST_F(ByteSwap, TypesWithoutRoutineLeaveEveryByte)
{
    const Bytes value = test::counting(2048);
    for (uint32_t type : std::initializer_list<uint32_t>{
             48,  122, 138, 158, 159, 160, 168, 170, 174, 176, 193, 200, 205,
             207, 208, 212, 213, 214, 215, 219, 220, 221, 222, 223, 227, 229})
        EXPECT_EQ(swapped(type, value), value) << type;
}

TEST_F(ByteSwap, RoutinesOfByteContentLeaveEveryByte)
{
    const Bytes value = test::counting(2048);
    for (uint32_t type : std::initializer_list<uint32_t>{35, 38, 49, 52, 109, 110})
        EXPECT_EQ(swapped(type, value), value) << type;
}

TEST_F(ByteSwap, TypesOfOneLayoutGiveOneResult)
{
    const Bytes value = test::counting(512);
    const std::pair<uint32_t, uint32_t> pairs[] = {{14, 15},   {18, 23},   {24, 29},  {59, 113},
                                                   {148, 155}, {150, 156}, {191, 192}};
    for (auto [one, other] : pairs) {
        EXPECT_EQ(swapped(one, value), swapped(other, value)) << one;
        EXPECT_NE(swapped(one, value), value) << one;
    }
}

TEST_F(ByteSwap, VlanBitmapIsConvertedByThePlatform)
{
    alignas(8) uint8_t sent[1024];
    Bitmap *map = Bitmap_CreateFromBuffer(4094, sent, sizeof sent);
    ASSERT_TRUE(map);
    Bitmap_Set(map, 100);
    alignas(8) uint8_t expected[1024];
    std::copy(std::begin(sent), std::end(sent), expected);
    Bitmap_H2N(reinterpret_cast<Bitmap *>(expected));
    const size_t before = test::platform.calls("Bitmap_H2N").size();
    OFP_bswap_ByteSwap(OFP_TLV_VlanBitmap, sent);
    EXPECT_EQ(test::platform.calls("Bitmap_H2N").size(), before + 1);
    EXPECT_EQ(test::bytes_of(sent), test::bytes_of(expected));
    OFP_bswap_VlanBitmap(sent);
    EXPECT_EQ(test::platform.calls("Bitmap_H2N").size(), before + 2);
    EXPECT_EQ(Bitmap_Check(map, 100), 1);
}

TEST_F(ByteSwap, EchoTimeTravelsInNetworkOrder)
{
    const OfpEchoTime time = {.interval = 5, .instance_id = 1};
    EXPECT_EQ(swapped(OFP_TLV_EchoTime, test::bytes_of(time)),
              hex("00000005" // interval
                  "0001 0000"));
}

TEST_F(ByteSwap, PrecedenceKeepsItsLastWord)
{
    EXPECT_EQ(swapped(OFP_TLV_Precedence, hex("0102 0304 01000000")), hex("0201 0403 01000000"));
}

TEST_F(ByteSwap, ActionHeadsConvertAlone)
{
    const Bytes value = hex("01020304 0506 0708 090a0b0c0d0e0f10");
    const Bytes head = hex("04030201 0605 0708 090a0b0c0d0e0f10");
    for (uint32_t type : std::initializer_list<uint32_t>{17, 22, 24, 28, 29})
        EXPECT_EQ(swapped(type, value), head) << type;
}

TEST_F(ByteSwap, SetFieldIsTheMatchLayoutBehindTheHeadAndTwoNumbers)
{
    const Bytes value = test::counting(304);
    const Bytes head = swapped(OFP_TLV_ActionHdr, value.slice(0, 8));
    const Bytes match = swapped(OFP_TLV_MatchField, value.slice(8, 272));
    Bytes tail = value.slice(280);
    std::reverse(tail.begin(), tail.begin() + 8);
    std::reverse(tail.begin() + 8, tail.begin() + 12);
    EXPECT_EQ(swapped(OFP_TLV_SetFieldAct, value), head + match + tail);
}

TEST_F(ByteSwap, CtrlDebugInfoIsPackedFromItsFirstByte)
{
    Bytes value = {0xaa};
    Bytes expected = {0xaa};
    for (uint8_t i = 0; i < 13; ++i) {
        value += {1, 2, 3, 4, 5, 6, 7, i};
        expected += {i, 7, 6, 5, 4, 3, 2, 1};
    }
    for (uint8_t i = 0; i < 7; ++i) {
        value += {1, 2, 3, i};
        expected += {i, 3, 2, 1};
    }
    ASSERT_EQ(value.size(), sizeof(OfpCtrlDebugInfo));
    EXPECT_EQ(swapped(OFP_TLV_CtrlDebugInfo, value), expected);
}

TEST_F(ByteSwap, BatchIfConvertsItsCountAndSixtyTwoIndexes)
{
    Bytes value;
    Bytes expected;
    for (uint8_t i = 0; i < 64; ++i) {
        value += {i, 1, 2, 3};
        expected += i < 63 ? Bytes{3, 2, 1, i} : Bytes{i, 1, 2, 3};
    }
    EXPECT_EQ(swapped(OFP_TLV_BatchIf, value), expected);
}

TEST_F(ByteSwap, AppPktStatsKeepsItsFirstEightBytes)
{
    const Bytes value = test::counting(88);
    const Bytes result = swapped(OFP_TLV_AppPktStats, value);
    EXPECT_EQ(result.slice(0, 8), value.slice(0, 8));
    EXPECT_EQ(result.slice(8, 8), hex("100f0e0d0c0b0a09"));
    EXPECT_EQ(result.slice(80), hex("54535251 58575655"));
}

TEST_F(ByteSwap, TrapEnableIsSixBytesWithAnUnalignedNumber)
{
    const OfpTrapEnable trap = {.instance_id = 1, .traps = std::bit_cast<OfpUnaligned32>(0x0203u)};
    EXPECT_EQ(swapped(OFP_TLV_TrapEnable, test::bytes_of(trap)), hex("0001 00000203"));
}

TEST_F(ByteSwap, OpenflowHeadersStayAsTheyAre)
{
    Bytes mod = hex("040e0048 00000007" // version, type, length, xid
                    "0102030405060708"  // cookie
                    "1112131415161718"  // cookie mask
                    "21 22 2324"        // table, command, idle time-out
                    "3132 3334"         // hard time-out, priority
                    "41424344"          // buffer
                    "51525354"          // out port
                    "61626364"          // out group
                    "7172 7374");       // flags, pad
    OFP_bswap_OfpFlowMod(mod.data());
    EXPECT_EQ(mod, hex("040e0048 00000007 0807060504030201 1817161514131211 21 22 2423 3231 3433"
                       "44434241 54535251 64636261 7271 7374"));

    Bytes group = hex("040f0010 00000000" // version, type, length, xid
                      "0102 03 04"        // command, type, pad
                      "05060708");        // group
    OFP_bswap_OfpGroupMod(group.data());
    EXPECT_EQ(group, hex("040f0010 00000000 0201 03 04 08070605"));
}

TEST(DispatchTable, LooksUpWithinItsBounds)
{
    using Handler = int (*)();
    static constexpr Handler one = [] { return 1; };
    constexpr auto table = ofp::by_number<Handler, 4>({{0, one}, {3, one}});
    EXPECT_EQ(table[0], one);
    EXPECT_EQ(table[1], nullptr);
    EXPECT_EQ(table[3], one);
    EXPECT_EQ(table[4], nullptr);
    EXPECT_EQ(table[5], nullptr);
    EXPECT_EQ(table[uint64_t{1} << 32], nullptr);
}

TEST(DispatchTable, WholeTableHasNothingAtZero)
{
    using Handler = int (*)();
    static constexpr Handler one = [] { return 1; };
    static constexpr Handler two = [] { return 2; };
    constexpr auto table = ofp::by_type<Handler, 2>({{2, two}, {1, one}});
    EXPECT_EQ(table[0], nullptr);
    EXPECT_EQ(table[1], one);
    EXPECT_EQ(table[2], two);
    EXPECT_EQ(table[3], nullptr);
}

TEST(SwapMembers, ConvertsTheNamedMembersOnly)
{
    struct Sample {
        uint16_t pair[2];
        uint32_t left;
        uint64_t wide;
        OfpUnaligned64 odd;
    };
    Bytes record = hex("0102 0304 05060708 0102030405060708 1112131415161718");
    ofp::swap_members<&Sample::pair, &Sample::wide, &Sample::odd>(record.data());
    EXPECT_EQ(record, hex("0201 0403 05060708 0807060504030201 1817161514131211"));
}

} // namespace

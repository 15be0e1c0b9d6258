#include <string>
#include <variant>

#include <gtest/gtest.h>

#include "option/value.h"

namespace ofpctl {
namespace {

constexpr Choice modes[] = {{"secure", 0}, {"standalone", 1}};
constexpr uint64_t maxima[] = {UINT64_MAX, 255};

constexpr SettingRow number{"n", ValueForm::number, "N", "help", 1, 65535};
constexpr SettingRow wide{"w", ValueForm::number, "N", "help", 0, UINT64_MAX};
constexpr SettingRow hexadecimal{"h", ValueForm::hex, "BITS", "help", 0, UINT32_MAX};
constexpr SettingRow datapath{"d", ValueForm::hex, "ID", "help", 1, UINT64_MAX};
constexpr SettingRow word{"m", ValueForm::word, "", "help", 0, 0, modes};
constexpr SettingRow text{"t", ValueForm::text, "TEXT", "help", 0, 5};
constexpr SettingRow filter{"vlan", ValueForm::vlan_filter, "ID", "help"};
constexpr SettingRow tables{"tables", ValueForm::tables, "ID:KIND,...", "help"};
constexpr SettingRow address{"address", ValueForm::address, "ADDRESS", "help"};
constexpr SettingRow ids{"ids", ValueForm::ids, "ID,...", "help", 0, 63};
constexpr SettingRow vlans{"vlans", ValueForm::vlans, "VLANS", "help"};
constexpr SettingRow numbers{
    .name = "a", .form = ValueForm::numbers, .value = "U64:U8", .help = "help", .maxima = maxima};

Value good(const SettingRow &row, std::string_view value)
{
    auto parsed = parse_value(row, value);
    EXPECT_TRUE(std::holds_alternative<Value>(parsed)) << value;
    return std::holds_alternative<Value>(parsed) ? std::get<Value>(parsed) : Value();
}

std::string bad(const SettingRow &row, std::string_view value)
{
    auto parsed = parse_value(row, value);
    EXPECT_TRUE(std::holds_alternative<BadValue>(parsed)) << value;
    return std::holds_alternative<BadValue>(parsed) ? std::get<BadValue>(parsed).what : "";
}

std::string round_trip(const SettingRow &row, std::string_view value)
{
    const Value once = good(row, value);
    const std::string written = format_value(row, once);
    EXPECT_EQ(good(row, written), once) << written;
    return written;
}

TEST(NumberValue, StaysInItsRange)
{
    EXPECT_EQ(round_trip(number, "1"), "1");
    EXPECT_EQ(round_trip(number, "0xffff"), "65535");
    for (const std::string_view wrong : {"0", "65536", "", "x", "-1", "1s", " 1", "1.5", "007"})
        EXPECT_EQ(bad(number, wrong),
                  "\"" + std::string(wrong) + "\" is not a number from 1 to 65535");
    EXPECT_EQ(round_trip(wide, "18446744073709551615"), "18446744073709551615");
    bad(wide, "18446744073709551616");
}

TEST(HexValue, IsWrittenAsBits)
{
    EXPECT_EQ(round_trip(hexadecimal, "10"), "0xa");
    EXPECT_EQ(round_trip(datapath, "0x1"), "0x0000000000000001");
    EXPECT_EQ(bad(datapath, "0"), "\"0\" is not a number from 0x1 to 0xffffffffffffffff");
}

TEST(WordValue, SuggestsTheNearest)
{
    EXPECT_EQ(round_trip(word, "standalone"), "standalone");
    EXPECT_EQ(bad(word, "standalon"),
              "\"standalon\" is none of secure, standalone; did you mean standalone?");
    EXPECT_EQ(bad(word, "42"), "\"42\" is none of secure, standalone");
    EXPECT_EQ(format_value(word, uint64_t{7}), "7") << "a value of a later agent is shown";
}

TEST(TextValue, IsNotCut)
{
    EXPECT_EQ(round_trip(text, "a b"), "a b");
    EXPECT_EQ(round_trip(text, ""), "");
    EXPECT_EQ(bad(text, "abcdef"), "the text has 6 bytes; at most 5 are kept");
    EXPECT_EQ(bad(text, std::string_view("a\0b", 3)), "the text holds a zero byte");
}

TEST(VlanFilterValue, IsAnIdWithMaskAndLooseness)
{
    EXPECT_EQ(round_trip(filter, "100"), "100");
    EXPECT_EQ(round_trip(filter, "100/0xfff"), "100") << "the whole mask is none";
    EXPECT_EQ(round_trip(filter, "96/0xff0,loose"), "96/0xff0,loose");
    EXPECT_EQ(round_trip(filter, "100-199"), "100-199");
    EXPECT_EQ(round_trip(filter, "7-7,loose"), "7-7,loose");
    EXPECT_EQ(round_trip(filter, "none"), "none");
    EXPECT_EQ(bad(filter, "9-7"), "\"9-7\" is no range of VLANs from 1 to 4094");
    EXPECT_EQ(bad(filter, "1-4095"), "\"1-4095\" is no range of VLANs from 1 to 4094");
    EXPECT_EQ(bad(filter, "0"), "\"0\" is no VLAN from 1 to 4094");
    EXPECT_EQ(bad(filter, "4095"), "\"4095\" is no VLAN from 1 to 4094");
    EXPECT_EQ(bad(filter, "1/0x1000"), "\"0x1000\" is no mask from 0 to 0xfff");
    EXPECT_EQ(bad(filter, "1,lose"), "\"lose\" is not loose");
}

TEST(TablesValue, IsSortedAndHasNoTableTwice)
{
    EXPECT_EQ(round_trip(tables, "30,10:1,20"), "10:1,20:2,30:2");
    EXPECT_EQ(round_trip(tables, "none"), "none");
    EXPECT_EQ(bad(tables, "10,20,10:3"), "table 10 is listed twice");
    for (const std::string_view wrong : {"255", "x", "10:", ":2", "10:x"})
        EXPECT_NE(bad(tables, wrong).find("is no table"), std::string::npos) << wrong;
    bad(tables, "");
    bad(tables, "10,");
}

TEST(AddressValue, IsIpv4OrIpv6)
{
    EXPECT_EQ(round_trip(address, "192.0.2.1"), "192.0.2.1");
    EXPECT_EQ(round_trip(address, "2001:db8::1"), "2001:db8::1");
    EXPECT_EQ(std::get<Address>(good(address, "192.0.2.1")).type, 2);
    EXPECT_EQ(bad(address, "192.0.2.256"), "\"192.0.2.256\" is no IPv4 and no IPv6 address");
    EXPECT_EQ(format_value(address, Address{}), "none");
}

TEST(IdsValue, AreBits)
{
    EXPECT_EQ(good(ids, "0,63"), Value(uint64_t{1} << 63 | 1));
    EXPECT_EQ(round_trip(ids, "3,1"), "1,3");
    EXPECT_EQ(round_trip(ids, "none"), "none");
    EXPECT_EQ(bad(ids, "64"), "\"64\" is not an id from 0 to 63");
    bad(ids, "1,");
}

TEST(NumbersValue, AreAsManyAsTheRecordHas)
{
    EXPECT_EQ(round_trip(numbers, "0x10:255"), "16:255");
    EXPECT_EQ(bad(numbers, "1:256"), "\"256\" is not a number from 0 to 255");
    EXPECT_EQ(bad(numbers, "1"), "\"1\" is not U64:U8");
    EXPECT_EQ(bad(numbers, "1:2:3"), "\"1:2:3\" is not U64:U8");
    EXPECT_EQ(bad(numbers, "1:2:"), "\"1:2:\" is not U64:U8");
    EXPECT_EQ(bad(numbers, ""), "\"\" is not U64:U8");
}

TEST(VlansValue, IsAListOfRanges) { EXPECT_EQ(round_trip(vlans, "20,1-10"), "1-10,20"); }

TEST(Value, IsWrittenAsJson)
{
    std::string out;
    JsonWriter json(out);
    json.begin_object();
    write_value(json, number, uint64_t{5});
    write_value(json, wide, UINT64_MAX);
    write_value(json, word, uint64_t{1});
    write_value(json, tables, std::vector<TableKind>{{10, 2}});
    json.end();
    EXPECT_EQ(out, R"({"n":5,"w":"18446744073709551615","m":"standalone","tables":"10:2"})");
}

} // namespace
} // namespace ofpctl

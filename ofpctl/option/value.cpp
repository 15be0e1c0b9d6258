#include "option/value.h"

#include <algorithm>
#include <utility>

#include <arpa/inet.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include "flow/number_text.h"
#include "frame/words.h"

namespace ofpctl {

namespace {

using Parsed = std::variant<Value, BadValue>;

constexpr uint16_t whole_mask = 0x0fff;
constexpr uint64_t last_vlan = 4094;
constexpr uint64_t last_table = 254;
constexpr uint32_t usual_kind = 2;
constexpr uint16_t ipv4_type = 2;
constexpr uint16_t ipv6_type = 10;

std::vector<std::string_view> words_of(const SettingRow &row)
{
    std::vector<std::string_view> words;
    for (const Choice &choice : row.choices)
        words.push_back(choice.word);
    return words;
}

Parsed parse_word(const SettingRow &row, std::string_view text)
{
    for (const Choice &choice : row.choices) {
        if (choice.word == text)
            return Value(choice.value);
    }
    const auto words = words_of(row);
    const std::string_view meant = nearest(text, words);
    return BadValue{fmt::format("\"{}\" is none of {}{}", text, fmt::join(words, ", "),
                                meant.empty() ? "" : fmt::format("; did you mean {}?", meant))};
}

Parsed parse_range(const SettingRow &row, std::string_view text)
{
    uint64_t number = 0;
    if (!scan_number(text, row.most, number) || number < row.least)
        return BadValue{fmt::format("\"{}\" is not a number from {}", text, accepted(row))};
    return Value(number);
}

Parsed parse_text(const SettingRow &row, std::string_view text)
{
    if (text.size() > row.most)
        return BadValue{
            fmt::format("the text has {} bytes; at most {} are kept", text.size(), row.most)};
    if (text.find('\0') != text.npos)
        return BadValue{"the text holds a zero byte"};
    return Value(std::string(text));
}

bool scan_vlan(std::string_view text, uint16_t &vlan)
{
    uint64_t number = 0;
    const bool good = scan_number(text, last_vlan, number) && number != 0;
    vlan = static_cast<uint16_t>(number);
    return good;
}

Parsed parse_masked(std::string_view text, VlanFilter filter)
{
    const std::size_t slash = text.find('/');
    uint64_t mask = whole_mask;
    if (slash != text.npos && !scan_number(text.substr(slash + 1), whole_mask, mask))
        return BadValue{fmt::format("\"{}\" is no mask from 0 to 0xfff", text.substr(slash + 1))};
    if (!scan_vlan(text.substr(0, slash), filter.a))
        return BadValue{
            fmt::format("\"{}\" is no VLAN from 1 to {}", text.substr(0, slash), last_vlan)};
    filter.b = static_cast<uint16_t>(mask);
    return Value(filter);
}

Parsed parse_vlan_range(std::string_view text, VlanFilter filter)
{
    const std::size_t dash = text.find('-');
    filter.kind = VlanFilter::Kind::range;
    if (!scan_vlan(text.substr(0, dash), filter.a) || !scan_vlan(text.substr(dash + 1), filter.b) ||
        filter.a > filter.b)
        return BadValue{fmt::format("\"{}\" is no range of VLANs from 1 to {}", text, last_vlan)};
    return Value(filter);
}

// ID[/MASK], FIRST-LAST or none, and whether loosely.
Parsed parse_filter(std::string_view text)
{
    VlanFilter filter{VlanFilter::Kind::masked, 0, whole_mask, false};
    if (text == "none")
        return Value(VlanFilter{});
    if (const std::size_t comma = text.find(','); comma != text.npos) {
        if (text.substr(comma + 1) != "loose")
            return BadValue{fmt::format("\"{}\" is not loose", text.substr(comma + 1))};
        filter.loose = true;
        text = text.substr(0, comma);
    }
    return text.find('-') == text.npos ? parse_masked(text, filter)
                                       : parse_vlan_range(text, filter);
}

bool scan_table(std::string_view text, TableKind &table)
{
    const std::size_t colon = text.find(':');
    uint64_t id = 0;
    uint64_t kind = usual_kind;
    if (!scan_number(text.substr(0, colon), last_table, id) ||
        (colon != text.npos && !scan_number(text.substr(colon + 1), UINT32_MAX, kind)))
        return false;
    table = {static_cast<uint8_t>(id), static_cast<uint32_t>(kind)};
    return true;
}

Parsed parse_tables(std::string_view text)
{
    if (text == "none")
        return Value(std::vector<TableKind>{});
    if (text.empty() || text.back() == ',')
        return BadValue{fmt::format("\"{}\" is no list of tables: 10:2,11:2 or none", text)};
    std::vector<TableKind> tables;
    for (const std::string_view part : split(text, ',')) {
        TableKind table{};
        if (!scan_table(part, table))
            return BadValue{fmt::format("\"{}\" is no table: an id from 0 to {}, a colon and its "
                                        "kind, like 10:2",
                                        part, last_table)};
        tables.push_back(table);
    }
    std::sort(tables.begin(), tables.end(),
              [](const TableKind &a, const TableKind &b) { return a.table < b.table; });
    const auto twice = std::adjacent_find(
        tables.begin(), tables.end(),
        [](const TableKind &a, const TableKind &b) { return a.table == b.table; });
    if (twice != tables.end())
        return BadValue{fmt::format("table {} is listed twice", twice->table)};
    return Value(std::move(tables));
}

Parsed parse_address(std::string_view text)
{
    const std::string terminated(text);
    Address address{ipv4_type, {}};
    if (inet_pton(AF_INET, terminated.c_str(), address.bytes.data()) == 1)
        return Value(address);
    address.type = ipv6_type;
    if (inet_pton(AF_INET6, terminated.c_str(), address.bytes.data()) == 1)
        return Value(address);
    return BadValue{fmt::format("\"{}\" is no IPv4 and no IPv6 address", text)};
}

// "1,3": bits 1 and 3.
Parsed parse_ids(const SettingRow &row, std::string_view text)
{
    uint64_t bits = 0;
    if (text == "none")
        return Value(bits);
    if (text.empty() || text.back() == ',')
        return BadValue{fmt::format("\"{}\" is no list of ids: 1,3 or none", text)};
    for (const std::string_view part : split(text, ',')) {
        uint64_t id = 0;
        if (!scan_number(part, row.most, id) || id < row.least)
            return BadValue{
                fmt::format("\"{}\" is not an id from {} to {}", part, row.least, row.most)};
        bits |= uint64_t{1} << id;
    }
    return Value(bits);
}

Parsed parse_numbers(const SettingRow &row, std::string_view text)
{
    const std::vector<std::string_view> parts = split(text, ':');
    std::vector<uint64_t> numbers(row.maxima.size());
    if (parts.size() != numbers.size() || text.back() == ':')
        return BadValue{fmt::format("\"{}\" is not {}", text, row.value)};
    for (std::size_t i = 0; i < parts.size(); i++) {
        if (!scan_number(parts[i], row.maxima[i], numbers[i]))
            return BadValue{
                fmt::format("\"{}\" is not a number from 0 to {}", parts[i], row.maxima[i])};
    }
    return Value(std::move(numbers));
}

std::string format_ids(uint64_t bits)
{
    std::string out;
    for (unsigned id = 0; id < 64; id++) {
        if ((bits >> id & 1) != 0)
            out += fmt::format("{}{}", out.empty() ? "" : ",", id);
    }
    return out.empty() ? "none" : out;
}

std::string format_word(const SettingRow &row, uint64_t number)
{
    for (const Choice &choice : row.choices) {
        if (choice.value == number)
            return std::string(choice.word);
    }
    return fmt::format("{}", number); // the agent knows a value that this table does not
}

std::string format_address(const Address &address)
{
    if (address.type == 0)
        return "none";
    char text[INET6_ADDRSTRLEN] = "";
    inet_ntop(address.type == ipv4_type ? AF_INET : AF_INET6, address.bytes.data(), text,
              sizeof text);
    return text;
}

std::string format_filter(const VlanFilter &filter)
{
    if (filter.kind == VlanFilter::Kind::none)
        return "none";
    std::string out = fmt::format("{}", filter.a);
    if (filter.kind == VlanFilter::Kind::range)
        out += fmt::format("-{}", filter.b);
    else if ((filter.b & whole_mask) != whole_mask)
        out += fmt::format("/0x{:x}", filter.b);
    return filter.loose ? out + ",loose" : out;
}

std::string format_tables(const std::vector<TableKind> &tables)
{
    std::string out;
    for (const TableKind &table : tables)
        out += fmt::format("{}{}:{}", out.empty() ? "" : ",", table.table, table.kind);
    return out.empty() ? "none" : out;
}

std::string format_number(const SettingRow &row, uint64_t number)
{
    switch (row.form) {
    case ValueForm::word:
        return format_word(row, number);
    case ValueForm::ids:
        return format_ids(number);
    case ValueForm::hex:
        return row.most > UINT32_MAX ? fmt::format("0x{:016x}", number)
                                     : fmt::format("0x{:x}", number);
    default:
        return fmt::format("{}", number);
    }
}

} // namespace

std::variant<Value, BadValue> parse_value(const SettingRow &row, std::string_view text)
{
    switch (row.form) {
    case ValueForm::number:
    case ValueForm::hex:
        return parse_range(row, text);
    case ValueForm::word:
        return parse_word(row, text);
    case ValueForm::text:
        return parse_text(row, text);
    case ValueForm::vlan_filter:
        return parse_filter(text);
    case ValueForm::tables:
        return parse_tables(text);
    case ValueForm::address:
        return parse_address(text);
    case ValueForm::ids:
        return parse_ids(row, text);
    case ValueForm::numbers:
        return parse_numbers(row, text);
    case ValueForm::vlans:
        break;
    }
    auto vlans = parse_vlans(text);
    if (auto *wrong = std::get_if<std::string>(&vlans))
        return BadValue{std::move(*wrong)};
    return Value(std::get<VlanSet>(std::move(vlans)));
}

std::string format_value(const SettingRow &row, const Value &value)
{
    struct Format {
        const SettingRow &row;
        std::string operator()(uint64_t number) const { return format_number(row, number); }
        std::string operator()(const std::string &text) const { return text; }
        std::string operator()(const VlanSet &vlans) const { return format_vlans(vlans); }
        std::string operator()(const VlanFilter &filter) const { return format_filter(filter); }
        std::string operator()(const std::vector<TableKind> &tables) const
        {
            return format_tables(tables);
        }
        std::string operator()(const Address &address) const { return format_address(address); }
        std::string operator()(const std::vector<uint64_t> &numbers) const
        {
            return fmt::format("{}", fmt::join(numbers, ":"));
        }
    };
    return std::visit(Format{row}, value);
}

void write_value(JsonWriter &json, const SettingRow &row, const Value &value)
{
    const uint64_t *number = std::get_if<uint64_t>(&value);
    if (number && row.form == ValueForm::number && row.most <= UINT32_MAX)
        json.number(row.name, static_cast<int64_t>(*number));
    else
        json.text(row.name, format_value(row, value));
}

std::string accepted(const SettingRow &row)
{
    switch (row.form) {
    case ValueForm::number:
        return fmt::format("{} to {}", row.least, row.most);
    case ValueForm::hex:
        return fmt::format("{:#x} to {:#x}", row.least, row.most);
    case ValueForm::word:
        return fmt::format("{}", fmt::join(words_of(row), ", "));
    case ValueForm::text:
        return fmt::format("at most {} bytes", row.most);
    default:
        return {};
    }
}

} // namespace ofpctl

#include "flow/experimenter_text.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include <fmt/format.h>

#include "flow/address.h"
#include "flow/field_table.h"
#include "flow/number_text.h"
#include "flow/value_text.h"

namespace ofpctl {
namespace {

// What an item's data is. In memory its numbers are in host order.
enum class Data : uint8_t { word, short_word, bytes, mac, range, text };

struct Row {
    uint8_t type;
    std::string_view name;
    Data data;
    Form form; // of numbers
};

// The types whose data the library writes.
constexpr auto rows = std::to_array<Row>({
    {37, "flow_flag", Data::word, Form::hex},
    {38, "string", Data::text, Form::decimal},
    {43, "bssid_43", Data::mac, Form::mac},
    {44, "reserve", Data::word, Form::decimal},
    {47, "inner_vlan", Data::short_word, Form::decimal},
    {48, "egress_port", Data::word, Form::port},
    {49, "bssid_49", Data::mac, Form::mac},
    {50, "eapol", Data::bytes, Form::code},
    {52, "service", Data::word, Form::decimal},
    {54, "l4_range_54", Data::range, Form::decimal},
    {55, "l4_range_55", Data::range, Form::decimal},
    {56, "l4_range_56", Data::range, Form::decimal},
    {57, "l4_range_57", Data::range, Form::decimal},
});

constexpr uint32_t last_type = 64;
constexpr uint32_t text_kind = 1; // the only kind of string whose text travels
// The length of an item shares one byte with the experimenter id.
constexpr std::size_t longest_data = 255 - 4;
constexpr std::size_t longest_text = longest_data - sizeof text_kind;

using Bytes = std::vector<uint8_t>;

const Row *find_row(uint32_t type)
{
    const auto row =
        std::find_if(rows.begin(), rows.end(), [type](const Row &r) { return r.type == type; });
    return row == rows.end() ? nullptr : row;
}

std::size_t data_size(Data data)
{
    switch (data) {
    case Data::short_word:
    case Data::bytes:
        return 2;
    case Data::mac:
        return 6;
    default:
        return 4; // of text: the least
    }
}

bool well_formed(const Row &row, std::size_t length)
{
    return row.data == Data::text ? length >= 4 && length <= longest_data
                                  : length == data_size(row.data);
}

template <class T>
void append_raw(Bytes &out, T value)
{
    uint8_t bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    out.insert(out.end(), bytes, bytes + sizeof value);
}

template <class T>
T load_raw(const uint8_t *bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// Turns the numbers of an item around: from memory to the wire or back.
void swap_data(Data data, uint8_t *bytes)
{
    if constexpr (std::endian::native == std::endian::big)
        return;
    if (data == Data::word || data == Data::text)
        std::reverse(bytes, bytes + 4);
    if (data == Data::short_word || data == Data::range)
        std::reverse(bytes, bytes + 2);
    if (data == Data::range)
        std::reverse(bytes + 2, bytes + 4);
}

// ---- From text ----

bool unescape(std::string_view text, std::string &out, Problem &problem)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            out += text[i];
        } else if (i + 1 < text.size() && (text[i + 1] == '"' || text[i + 1] == '\\')) {
            out += text[++i];
        } else if (text.substr(i + 1, 1) == "x" && text.size() - i >= 4 &&
                   scan_bytes(text.substr(i + 2, 2), out)) {
            i += 3;
        } else {
            return problem.report(text.substr(i, 2), "unknown escape in the string",
                                  R"(expected \", \\ or \xHH)");
        }
    }
    return true;
}

bool parse_string(std::string_view name, std::string_view text, Bytes &data, Problem &problem)
{
    std::string content;
    if (text.starts_with('"')) {
        if (text.size() < 2 || text.back() != '"')
            return problem.report(text, "the string has no closing quote");
        if (!unescape(text.substr(1, text.size() - 2), content, problem))
            return false;
    } else {
        content = text;
    }
    if (content.size() > longest_text)
        return problem.report(text, fmt::format("{} is {} bytes long", name, content.size()),
                              fmt::format("expected at most {}", longest_text));
    append_raw(data, text_kind);
    data.insert(data.end(), content.begin(), content.end());
    return true;
}

bool parse_range(std::string_view name, std::string_view text, Bytes &data, Problem &problem)
{
    const auto dash = text.find('-');
    if (dash == text.npos)
        return problem.report(text, fmt::format("'{}' is no range of ports", text),
                              "expected one like 1000-1999");
    uint64_t low;
    uint64_t high;
    if (!parse_number(name, text.substr(0, dash), UINT16_MAX, low, problem) ||
        !parse_number(name, text.substr(dash + 1), UINT16_MAX, high, problem))
        return false;
    if (low > high)
        return problem.report(text, fmt::format("the range {} is empty", text),
                              fmt::format("write {}-{}", high, low));
    append_raw(data, static_cast<uint16_t>(low));
    append_raw(data, static_cast<uint16_t>(high));
    return true;
}

bool parse_number_data(const Row &row, std::string_view name, std::string_view text, Bytes &data,
                       Problem &problem)
{
    const auto width = static_cast<unsigned>(data_size(row.data) * 8);
    if (const auto slash = text.find('/'); slash != text.npos)
        return problem.report(text.substr(slash), fmt::format("{} takes no mask", name));
    MaskedValue value;
    if (!parse_value(name, text, row.form, width, value, problem))
        return false;
    if (value.mask != ones(width))
        return problem.report(text, fmt::format("{} takes no wildcard", name));
    if (row.data == Data::word) {
        append_raw(data, static_cast<uint32_t>(value.value.low));
    } else if (row.data == Data::short_word) {
        append_raw(data, static_cast<uint16_t>(value.value.low));
    } else {
        data.resize(width / 8);
        to_bytes(value.value, data.data(), data.size());
    }
    return true;
}

bool parse_hex_data(const Row *row, uint32_t type, std::string_view text, Bytes &data,
                    Problem &problem)
{
    std::string bytes;
    if (!scan_bytes(text, bytes))
        return problem.report(text, fmt::format("'{}' is no data in hexadecimal", text),
                              "expected two digits for each byte, like 0000002a");
    if (row == nullptr && !bytes.empty())
        return problem.report(
            text, fmt::format("the library sends no data for experimenter type {}", type),
            fmt::format("write exp({}) alone", type));
    if (row != nullptr && !well_formed(*row, bytes.size()))
        return problem.report(text, fmt::format("{} holds {} bytes, not {}", row->name,
                                                row->data == Data::text
                                                    ? "4 to 251"
                                                    : fmt::format("{}", data_size(row->data)),
                                                bytes.size()));
    data.assign(bytes.begin(), bytes.end());
    if (row != nullptr)
        swap_data(row->data, data.data());
    if (row != nullptr && row->data == Data::text && load_raw<uint32_t>(data.data()) != text_kind)
        return problem.report(text.substr(0, 8), "the library sends no text of this kind",
                              "expected 00000001, then the text");
    return true;
}

// ---- To text ----

bool sent_as_it_is(const OfpExpMatchItem &item)
{
    const Row *row = find_row(item.type);
    return row != nullptr && well_formed(*row, item.length) &&
           (row->data != Data::text || load_raw<uint32_t>(item.data) == text_kind);
}

} // namespace

bool parse_experimenter(std::string_view name, uint8_t type, std::string_view text,
                        FlowDraft &draft, Problem &problem)
{
    const Row &row = *find_row(type);
    Bytes data;
    bool good;
    if (row.data == Data::text)
        good = parse_string(name, text, data, problem);
    else if (row.data == Data::range)
        good = parse_range(name, text, data, problem);
    else
        good = parse_number_data(row, name, text, data, problem);
    if (good)
        draft.add_experimenter(type, data);
    return good;
}

bool parse_any_experimenter(std::string_view name, std::string_view text, FlowDraft &draft,
                            Problem &problem)
{
    uint64_t type;
    if (!name.starts_with("exp(") || !name.ends_with(')'))
        return problem.report(name, "exp has no type",
                              "write exp(TYPE)=DATA, the type from 0 to 64");
    if (!parse_number("an experimenter type", name.substr(4, name.size() - 5), last_type, type,
                      problem))
        return false;
    if (type >= OFP_FIELD_IP_RANGE && type <= OFP_FIELD_CVLAN_VID)
        return problem.report(name, fmt::format("{} travels as a private field", name),
                              "write ip_range, batch_if, vrf, fragment, priv_out_port or cvlan");
    Bytes data;
    if (!parse_hex_data(find_row(static_cast<uint32_t>(type)), static_cast<uint32_t>(type), text,
                        data, problem))
        return false;
    draft.add_experimenter(static_cast<uint32_t>(type), data);
    return true;
}

void add_wire_experimenter(uint32_t type, std::span<const uint8_t> data, FlowDraft &draft)
{
    const Row *row = find_row(type);
    Bytes turned(data.begin(), data.end());
    if (row != nullptr && turned.size() >= data_size(row->data))
        swap_data(row->data, turned.data());
    draft.add_experimenter(type, turned);
}

void append_experimenter_name(std::string &out, const OfpExpMatchItem &item)
{
    if (sent_as_it_is(item)) {
        out += find_row(item.type)->name;
        return;
    }
    out += "exp(";
    append_decimal(out, item.type);
    out += ')';
}

void append_experimenter_value(std::string &out, const OfpExpMatchItem &item)
{
    const Row *row = find_row(item.type);
    if (!sent_as_it_is(item))
        return append_experimenter_data(out, item);
    const auto exact = [&](uint64_t value, unsigned width) {
        append_value(out, row->form, width, {{0, value}, ones(width)});
    };
    switch (row->data) {
    case Data::word:
        return exact(load_raw<uint32_t>(item.data), 32);
    case Data::short_word:
        return exact(load_raw<uint16_t>(item.data), 16);
    case Data::bytes:
    case Data::mac:
        return exact(from_bytes(item.data, item.length).low, item.length * 8U);
    case Data::range:
        append_decimal(out, load_raw<uint16_t>(item.data));
        out += '-';
        return append_decimal(out, load_raw<uint16_t>(item.data + 2));
    case Data::text:
        return append_quoted(out, *experimenter_string(item));
    }
}

void append_experimenter_data(std::string &out, const OfpExpMatchItem &item)
{
    const Row *row = find_row(item.type);
    Bytes data(item.data, item.data + item.length);
    if (row != nullptr && data.size() >= data_size(row->data))
        swap_data(row->data, data.data());
    for (const uint8_t byte : data)
        append_byte(out, byte);
}

std::optional<std::string_view> experimenter_string(const OfpExpMatchItem &item)
{
    const Row *row = find_row(item.type);
    if (row == nullptr || row->data != Data::text || !sent_as_it_is(item))
        return std::nullopt;
    return std::string_view(reinterpret_cast<const char *>(item.data) + sizeof text_kind,
                            item.length - sizeof text_kind);
}

void append_quoted(std::string &out, std::string_view text)
{
    out += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (c >= ' ' && c <= '~') {
            out += c;
        } else {
            out += "\\x";
            append_byte(out, static_cast<uint8_t>(c));
        }
    }
    out += '"';
}

} // namespace ofpctl

#include "wire/decode.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>
#include <variant>

#include <arpa/inet.h>
#include <fmt/format.h>

#include "flow/flow_decode.h"
#include "flow/flow_text.h"
#include "frame/failure.h"
#include "ofp.h"
#include "option/vlan_set.h"
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr std::size_t tlv_header = 4;
constexpr std::size_t openflow_header = 8;
constexpr uint8_t flow_mod = 14;

using Bytes = std::span<const uint8_t>;

uint64_t big_endian(Bytes bytes)
{
    uint64_t number = 0;
    for (const uint8_t byte : bytes)
        number = number << 8 | byte;
    return number;
}

template <class Number>
uint64_t number_at(const uint8_t *at)
{
    Number number;
    std::memcpy(&number, at, sizeof number);
    return number;
}

std::string terminated(const uint8_t *at, std::size_t room)
{
    const std::string text(reinterpret_cast<const char *>(at), room);
    return text.substr(0, text.find('\0'));
}

// What a number stands for, where that is a name.
std::string named_number(uint32_t type, uint64_t number)
{
    const auto code = static_cast<uint32_t>(number);
    std::string_view name;
    if (type == OFP_TLV_MsgHead)
        name = message_name(code);
    else if (type == OFP_TLV_ErrCode)
        name = result_name(code);
    return name.empty() ? fmt::format("{}", number) : fmt::format("0x{:08x} {}", number, name);
}

// Addresses travel as they lie, IPv4 in the first word with nothing behind it.
std::string address_text(const uint8_t *at)
{
    constexpr std::size_t ipv4_bytes = 4;
    constexpr std::size_t ipv6_bytes = 16;
    const bool ipv4 =
        std::all_of(at + ipv4_bytes, at + ipv6_bytes, [](uint8_t byte) { return byte == 0; });
    char text[INET6_ADDRSTRLEN] = "";
    inet_ntop(ipv4 ? AF_INET : AF_INET6, at, text, sizeof text);
    return text;
}

// record: the value in host order.
DecodedField decode_member(const FieldRow &row, const uint8_t *record, std::size_t value_offset)
{
    const uint8_t *at = record + row.offset;
    DecodedField field{value_offset + row.offset,
                       std::size_t{row.width} * row.count,
                       std::string(row.name),
                       member_text(row, at),
                       {}};
    if (row.shape == Shape::number && row.count == 1)
        field.number = member_number(at, row.width);
    return field;
}

std::vector<DecodedField> decode_record(uint32_t type, std::span<const FieldRow> rows, Bytes value,
                                        std::size_t offset)
{
    std::vector<uint8_t> record(value.begin(), value.end());
    OFP_bswap_ByteSwap(type, record.data());
    std::vector<DecodedField> fields;
    for (const FieldRow &row : rows)
        fields.push_back(decode_member(row, record.data(), offset));
    return fields;
}

// Two 32-bit numbers, then the bits; sent only as long as the map is.
std::vector<DecodedField> decode_vlans(Bytes value, std::size_t offset)
{
    const VlanMap map(value);
    return {{offset, 4, "length", fmt::format("{}", big_endian(value.first(4))),
             big_endian(value.first(4))},
            {offset + 4, 4, "bits", fmt::format("{}", big_endian(value.subspan(4, 4))),
             big_endian(value.subspan(4, 4))},
            {offset + 8, value.size() - 8, "map", format_vlans(map.vlans()), {}}};
}

std::vector<DecodedField> decode_openflow(Bytes value, std::size_t offset)
{
    constexpr std::array<std::pair<std::string_view, std::size_t>, 4> head{
        {{"version", 1}, {"type", 1}, {"length", 2}, {"xid", 4}}};
    std::vector<DecodedField> fields;
    std::size_t at = 0;
    for (const auto &[name, width] : head) {
        const uint64_t number = big_endian(value.subspan(at, width));
        fields.push_back(
            {offset + at, width, std::string(name), fmt::format("{}", number), number});
        at += width;
    }
    if (value.size() > at)
        fields.push_back({offset + at, value.size() - at, "body", {}, {}});
    if (value[1] != flow_mod)
        return fields;
    const FlowDecodeResult rule = decode_flow_mod(value);
    if (const Flow *flow = std::get_if<Flow>(&rule))
        append_flow(fields.back().value, *flow->item, flow->table.value_or(flow_table));
    return fields;
}

std::vector<DecodedField> unnamed(Bytes value, std::size_t offset)
{
    if (value.empty())
        return {};
    return {{offset, value.size(), "value", {}, {}}};
}

void decode_value(DecodedTlv &tlv, Bytes value)
{
    const std::size_t offset = tlv.offset + tlv_header;
    const std::span<const FieldRow> rows = fields_of(tlv.type);
    if (tlv.type == OFP_TLV_FlowEntry && value.size() >= openflow_header) {
        tlv.fields = decode_openflow(value, offset);
    } else if (tlv.type == OFP_TLV_VlanBitmap && value.size() >= 8) {
        tlv.fields = decode_vlans(value, offset);
    } else if (!rows.empty() && value.size() == rows.front().record) {
        tlv.fields = decode_record(tlv.type, rows, value, offset);
    } else {
        tlv.fields = unnamed(value, offset);
        if (!rows.empty())
            tlv.note = fmt::format("its record has {} bytes", rows.front().record);
    }
}

// The first OpenFlow message of a group message counts its TLV header in the TLV's length.
bool counts_header(const DecodedDatagram &datagram, uint16_t type)
{
    const uint32_t code = datagram.code.value_or(0);
    const bool group = code == OFP_MSG_SET_GROUP || code == OFP_MSG_DEL_GROUP;
    return group && type == OFP_TLV_FlowEntry &&
           std::none_of(datagram.tlvs.begin(), datagram.tlvs.end(),
                        [](const DecodedTlv &tlv) { return tlv.type == OFP_TLV_FlowEntry; });
}

} // namespace

uint64_t member_number(const uint8_t *at, std::size_t width)
{
    switch (width) {
    case 1:
        return *at;
    case 2:
        return number_at<uint16_t>(at);
    case 4:
        return number_at<uint32_t>(at);
    default:
        return number_at<uint64_t>(at);
    }
}

std::string member_text(const FieldRow &row, const uint8_t *at)
{
    if (row.shape == Shape::bytes)
        return {};
    if (row.shape == Shape::text)
        return fmt::format("\"{}\"", terminated(at, row.count));
    if (row.name == "address" && row.count > 1)
        return address_text(at);
    if (row.count == 1)
        return named_number(row.type, member_number(at, row.width));
    std::string text;
    for (std::size_t i = 0; i < row.count; i++)
        text +=
            fmt::format("{}{}", i == 0 ? "" : " ", member_number(at + i * row.width, row.width));
    return text;
}

DecodedDatagram decode_datagram(Bytes datagram)
{
    DecodedDatagram decoded;
    while (datagram.size() - decoded.taken >= tlv_header) {
        const Bytes rest = datagram.subspan(decoded.taken);
        DecodedTlv tlv{decoded.taken,
                       static_cast<uint16_t>(big_endian(rest.first(2))),
                       static_cast<uint16_t>(big_endian(rest.subspan(2, 2))),
                       {},
                       {}};
        std::size_t length = tlv.length;
        if (counts_header(decoded, tlv.type) && length >= tlv_header) {
            length -= tlv_header;
            tlv.note = "its length counts the TLV's header";
        }
        if (length > rest.size() - tlv_header)
            break;
        const Bytes value = rest.subspan(tlv_header, length);
        if (tlv.offset == 0 && tlv.type == OFP_TLV_MsgHead && length == 4)
            decoded.code = static_cast<uint32_t>(big_endian(value));
        decode_value(tlv, value);
        decoded.tlvs.push_back(std::move(tlv));
        decoded.taken += tlv_header + length;
    }
    return decoded;
}

} // namespace ofpctl

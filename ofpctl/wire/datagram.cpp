#include "wire/datagram.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <fmt/format.h>

#include "wire/decode.h"
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

using Bytes = std::span<const uint8_t>;

constexpr std::size_t bytes_a_line = 8;
constexpr std::size_t tlv_header = 4;

std::string hex(Bytes bytes, std::string_view between)
{
    std::string out;
    for (const uint8_t byte : bytes)
        out += fmt::format("{}{:02x}", out.empty() ? std::string_view() : between, byte);
    return out;
}

void append_line(std::string &out, std::size_t offset, std::string_view bytes,
                 std::string_view label)
{
    out += fmt::format("  {:04x}  {:<23}", offset, bytes);
    if (!label.empty())
        out += fmt::format("  {}", label);
    out.erase(out.find_last_not_of(' ') + 1);
    out += '\n';
}

// The label stands beside the first line; zeros to the end take one.
void append_bytes(std::string &out, Bytes datagram, std::size_t offset, std::size_t size,
                  std::string_view label)
{
    for (std::size_t at = 0; at < size; at += bytes_a_line) {
        const Bytes rest = datagram.subspan(offset + at, size - at);
        if (rest.size() > 2 * bytes_a_line &&
            std::all_of(rest.begin(), rest.end(), [](uint8_t byte) { return byte == 0; })) {
            append_line(out, offset + at, fmt::format("00 {} times", rest.size()), label);
            return;
        }
        append_line(out, offset + at, hex(rest.first(std::min(bytes_a_line, rest.size())), " "),
                    label);
        label = {};
    }
}

std::string field_label(const DecodedField &field)
{
    return field.value.empty() ? field.name : fmt::format("{} = {}", field.name, field.value);
}

std::string tlv_label(const DecodedTlv &tlv)
{
    const std::string_view name = tlv_name(tlv.type);
    std::string label = fmt::format("TLV {}{}{}, {} byte{}", tlv.type, name.empty() ? "" : " ",
                                    name, tlv.length, tlv.length == 1 ? "" : "s");
    if (!tlv.note.empty())
        label += fmt::format("; {}", tlv.note);
    return label;
}

std::string title(const DecodedDatagram &decoded, std::size_t size)
{
    if (!decoded.code)
        return fmt::format("no message head, {} bytes\n", size);
    const std::string_view name = message_name(*decoded.code);
    const std::string number = *decoded.code < 0x10000 ? fmt::format("{}", *decoded.code)
                                                       : fmt::format("0x{:08x}", *decoded.code);
    return fmt::format("{} ({}), {} bytes\n", name.empty() ? "unknown message" : name, number,
                       size);
}

void write_field(JsonWriter &json, const DecodedField &field, Bytes datagram)
{
    json.begin_object();
    json.text("name", field.name);
    json.number("offset", static_cast<int64_t>(field.offset));
    json.text("bytes", hex(datagram.subspan(field.offset, field.size), ""));
    if (field.number)
        json.wide("number", *field.number);
    if (!field.value.empty())
        json.text("value", field.value);
    json.end();
}

void write_tlv(JsonWriter &json, const DecodedTlv &tlv, Bytes datagram)
{
    json.begin_object();
    json.number("type", tlv.type);
    if (const std::string_view name = tlv_name(tlv.type); !name.empty())
        json.text("name", name);
    else
        json.null("name");
    json.number("offset", static_cast<int64_t>(tlv.offset));
    json.number("length", tlv.length);
    if (!tlv.note.empty())
        json.text("note", tlv.note);
    json.begin_array("fields");
    for (const DecodedField &field : tlv.fields)
        write_field(json, field, datagram);
    json.end();
    json.end();
}

} // namespace

std::string datagram_text(Bytes datagram)
{
    const DecodedDatagram decoded = decode_datagram(datagram);
    std::string out = title(decoded, datagram.size());
    for (const DecodedTlv &tlv : decoded.tlvs) {
        append_bytes(out, datagram, tlv.offset, tlv_header, tlv_label(tlv));
        for (const DecodedField &field : tlv.fields)
            append_bytes(out, datagram, field.offset, field.size, field_label(field));
    }
    append_bytes(out, datagram, decoded.taken, datagram.size() - decoded.taken, "no whole TLV");
    return out;
}

void write_datagram(JsonWriter &json, Bytes datagram)
{
    const DecodedDatagram decoded = decode_datagram(datagram);
    if (decoded.code) {
        json.number("code", static_cast<int64_t>(*decoded.code));
        const std::string_view name = message_name(*decoded.code);
        if (name.empty())
            json.null("message");
        else
            json.text("message", name);
    } else {
        json.null("code");
        json.null("message");
    }
    json.number("bytes", static_cast<int64_t>(datagram.size()));
    json.text("hex", hex(datagram, ""));
    json.begin_array("tlvs");
    for (const DecodedTlv &tlv : decoded.tlvs)
        write_tlv(json, tlv, datagram);
    json.end();
    json.number("not_a_tlv", static_cast<int64_t>(datagram.size() - decoded.taken));
}

} // namespace ofpctl

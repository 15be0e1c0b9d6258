// The members of wire records by name, so that datagrams can be printed as a person reads them.
// Places and widths are the compiler's, taken from the records themselves; each table proves that
// it leaves no byte of a record out.
#ifndef OFPCTL_WIRE_RECORD_FIELDS_H
#define OFPCTL_WIRE_RECORD_FIELDS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>

#include "ofp/wire.h"

namespace ofpctl {

enum class Shape : uint8_t { number, text, bytes };

struct FieldRow {
    uint16_t type;   // TLV
    uint16_t record; // bytes of the whole record
    uint16_t offset;
    uint16_t width; // of a number
    uint16_t count; // of numbers or bytes
    Shape shape;
    std::string_view name;
};

template <class Member>
constexpr FieldRow field(uint16_t type, std::size_t record, std::size_t offset,
                         std::string_view name)
{
    using Element = std::remove_extent_t<Member>;
    constexpr bool list = std::is_array_v<Member>;
    constexpr Shape shape = std::is_same_v<Element, char>              ? Shape::text
                            : list && std::is_same_v<Element, uint8_t> ? Shape::bytes
                                                                       : Shape::number;
    return {type,
            static_cast<uint16_t>(record),
            static_cast<uint16_t>(offset),
            sizeof(Element),
            static_cast<uint16_t>(sizeof(Member) / sizeof(Element)),
            shape,
            name};
}

// A row for a member of the record that a TLV is named for.
#define OFPCTL_FIELD(tlv, member)                                                                  \
    field<decltype(Ofp##tlv::member)>(OFP_TLV_##tlv, sizeof(Ofp##tlv), offsetof(Ofp##tlv, member), \
                                      #member)

// Whether the rows of each record follow one another without a gap from its first byte to its last.
constexpr bool cover_records(std::span<const FieldRow> rows)
{
    std::size_t at = 0;
    for (std::size_t i = 0; i < rows.size(); i++) {
        if (rows[i].offset != at)
            return false;
        at += std::size_t{rows[i].width} * rows[i].count;
        if (i + 1 < rows.size() && rows[i + 1].type == rows[i].type)
            continue;
        if (at != rows[i].record)
            return false;
        at = 0;
    }
    return true;
}

// By the topics of the library's headers; each in ascending order of types.
extern const std::span<const FieldRow> message_fields;
extern const std::span<const FieldRow> instance_fields;
extern const std::span<const FieldRow> controller_fields;
extern const std::span<const FieldRow> connection_fields;
extern const std::span<const FieldRow> port_fields;
extern const std::span<const FieldRow> vlan_fields;
extern const std::span<const FieldRow> debug_fields;
extern const std::span<const FieldRow> resource_fields;
extern const std::span<const FieldRow> table_fields;
extern const std::span<const FieldRow> group_fields;
extern const std::span<const FieldRow> meter_fields;
extern const std::span<const FieldRow> stats_fields;
extern const std::span<const FieldRow> rule_fields;
extern const std::span<const FieldRow> event_fields;

// The members of a TLV's record; empty for a type whose members have no names here.
std::span<const FieldRow> fields_of(uint32_t type);

// "EchoTime"; empty for an unknown type.
std::string_view tlv_name(uint32_t type);
// "SET_ECHO_TIME"; empty for an unknown code.
std::string_view message_name(uint32_t code);

} // namespace ofpctl

#endif

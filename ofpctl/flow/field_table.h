// The match fields of a flow item: names, width, form of their text, what they need, and where
// their value and mask lie.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "flow/prerequisite.h"
#include "flow/wide.h"
#include "ofp/flow_item.h"

namespace ofpctl {

// How a value is written.
enum class Form : uint8_t {
    decimal, // masked values in hexadecimal
    hex,     // always hexadecimal
    code,    // hexadecimal with all its digits
    port,    // decimal or the name of a reserved port
    mac,
    ipv4,
    ipv6,
    vlan,       // decimal, or with the present bit and a mask
    dscp,       // as the type-of-service byte that holds it
    headers,    // names of IPv6 extension headers
    words,      // of ip_range
    interfaces, // of batch_if
};

// Values and masks as numbers. Only fields that carry a mask on the wire have the last two.
struct Access {
    Wide (*value)(const OfpFRMatch &);
    void (*set_value)(OfpFRMatch &, Wide);
    Wide (*mask)(const OfpFRMatch &);
    void (*set_mask)(OfpFRMatch &, Wide);
};

struct Field {
    OfpFieldBit bit;
    std::string_view name;     // in lines of text
    std::string_view standard; // in JSON: OpenFlow's name
    Form form;
    uint8_t width; // bits
    Needs needs;
    Access access; // empty for words and interfaces

    bool maskable() const { return access.mask != nullptr; }
};

// In the order in which text has them.
std::span<const Field> all_fields();

// Null when no field has this bit.
const Field *find_field(unsigned bit);

constexpr uint64_t field_bit(unsigned bit) { return uint64_t{1} << bit; }

// Those whose values lie in the IPv6 block.
constexpr uint64_t ipv6_field_bits =
    uint64_t{0xff} << OFP_FIELD_IPV6_SRC | field_bit(OFP_FIELD_IPV6_EXTHDR);

// On the wire a VLAN id carries this bit: there is a tag.
constexpr uint64_t vlan_present = 0x1000;

// A VLAN id with a mask of no bits still says that there is a tag; in other fields such a mask
// leaves nothing to match.
inline bool is_vlan(const Field &field) { return field.form == Form::vlan; }

// The mask a field's value is compared under: all ones when it has none. For a field that takes
// part in the match.
Wide effective_mask(const OfpFRMatch &match, const Field &field);
Wide effective_value(const OfpFRMatch &match, const Field &field); // its bits under that mask

// Whether the match depends on the field: it takes part, and with a mask that selects something.
bool takes_part(const OfpFRMatch &match, const Field &field);

} // namespace ofpctl

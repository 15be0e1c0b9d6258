// Every word that may begin an option of a flow line, and what it stands for.
#pragma once

#include <cstdint>
#include <string_view>

#include "flow/prerequisite.h"

namespace ofpctl {

enum class Option : uint8_t {
    // Of the match.
    field,        // which: OfpFieldBit
    protocol,     // which: Protocol
    shared,       // which: SharedName
    vlan_number,  // which: OfpFieldBit; the VLAN id alone
    vlan_tci,     // the whole tag
    dscp_byte,    // the code point as the byte that holds it
    experimenter, // which: experimenter type
    any_experimenter,
    // Of the rule.
    table,
    priority,
    actions,
    zero,     // the library always writes 0 here; any other value is refused
    always,   // the library always sets this flag
    never,    // the library never sets this flag
    nowhere,  // the library always leaves this filter open
    counters, // what a dump prints of a rule's life; skipped
    foreign,  // a field of Open vSwitch that the library cannot carry
};

constexpr bool is_of_match(Option option) { return option <= Option::any_experimenter; }

struct Keyword {
    std::string_view name;
    Option option;
    uint8_t which = 0;
};

// A word that is several fields, told apart by the protocol of the line.
enum SharedName : uint8_t { nw_src, nw_dst, nw_proto, tp_src, tp_dst, icmp_type, icmp_code };
constexpr std::size_t shared_names = 7;

struct Protocol {
    std::string_view name;
    EthType eth_type;
    uint8_t ip_proto; // 0: none
};
const Protocol &protocol(uint8_t which);
// The word for the pair, the most telling one; null when there is none. ip_proto may be -1.
const Protocol *find_protocol(int eth_type, int ip_proto);

const Keyword *find_keyword(std::string_view word);
std::string_view nearest_keyword(std::string_view word); // empty when none is near

} // namespace ofpctl

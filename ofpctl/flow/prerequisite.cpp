#include "flow/prerequisite.h"

#include <array>

#include "flow/field_table.h"

namespace ofpctl {
namespace {

struct Row {
    bool (*met)(const Layers &);
    std::string_view text;
};

bool is_discovery(const Layers &l, int first, int last)
{
    return l.eth_type == eth_ipv6 && l.ip_proto == proto_icmp6 && l.icmp6_type >= first &&
           l.icmp6_type <= last;
}

// By Needs.
constexpr std::array<Row, 16> rows = {{
    {[](const Layers &) { return true; }, {}},
    {[](const Layers &l) { return l.in_port; }, "in_port"},
    {[](const Layers &l) { return l.is_ip(); }, "ip or ipv6"},
    {[](const Layers &l) { return l.eth_type == eth_ipv4; }, "ip"},
    {[](const Layers &l) { return l.eth_type == eth_ipv6; }, "ipv6"},
    {[](const Layers &l) { return l.is_arp(); }, "arp or rarp"},
    {[](const Layers &l) { return l.eth_type == eth_mpls || l.eth_type == eth_mpls_multicast; },
     "mpls or mplsm"},
    {[](const Layers &l) { return l.eth_type == eth_pbb; }, "dl_type=0x88e7"},
    {[](const Layers &l) { return l.carries(proto_tcp); }, "tcp or tcp6"},
    {[](const Layers &l) { return l.carries(proto_udp); }, "udp or udp6"},
    {[](const Layers &l) { return l.carries(proto_sctp); }, "sctp or sctp6"},
    {[](const Layers &l) { return l.eth_type == eth_ipv4 && l.ip_proto == proto_icmp; }, "icmp"},
    {[](const Layers &l) { return l.eth_type == eth_ipv6 && l.ip_proto == proto_icmp6; }, "icmp6"},
    {[](const Layers &l) { return is_discovery(l, 135, 136); }, "icmp6 and icmp_type=135 or 136"},
    {[](const Layers &l) { return is_discovery(l, 135, 135); }, "icmp6 and icmp_type=135"},
    {[](const Layers &l) { return is_discovery(l, 136, 136); }, "icmp6 and icmp_type=136"},
}};

} // namespace

Layers::Layers(const OfpFRMatch &match)
{
    const auto has = [&match](unsigned bit) { return (match.fields & field_bit(bit)) != 0; };
    in_port = has(OFP_FIELD_IN_PORT);
    if (has(OFP_FIELD_ETH_TYPE))
        eth_type = match.eth_type;
    if (has(OFP_FIELD_IP_PROTO))
        ip_proto = match.ip_proto;
    if (has(OFP_FIELD_ICMPV6_TYPE) && match.ipv6 != nullptr)
        icmp6_type = match.ipv6->icmpv6_type;
}

bool is_met(Needs needs, const Layers &layers)
{
    return rows[static_cast<std::size_t>(needs)].met(layers);
}

std::string_view describe(Needs needs) { return rows[static_cast<std::size_t>(needs)].text; }

} // namespace ofpctl

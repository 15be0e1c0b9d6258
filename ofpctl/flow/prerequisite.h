// What must be in a match beside a field: OpenFlow has no TCP port without "this is TCP".
#pragma once

#include <cstdint>
#include <string_view>

#include "ofp/flow_item.h"

namespace ofpctl {

enum class Needs : uint8_t {
    nothing,
    in_port,
    ip,
    ipv4,
    ipv6,
    arp,
    mpls,
    pbb,
    tcp,
    udp,
    sctp,
    icmp,
    icmp6,
    neighbour,
    solicitation,
    advertisement
};

enum EthType : uint16_t {
    eth_ipv4 = 0x0800,
    eth_arp = 0x0806,
    eth_rarp = 0x8035,
    eth_ipv6 = 0x86dd,
    eth_mpls = 0x8847,
    eth_mpls_multicast = 0x8848,
    eth_pbb = 0x88e7
};

enum IpProto : uint8_t {
    proto_icmp = 1,
    proto_tcp = 6,
    proto_udp = 17,
    proto_icmp6 = 58,
    proto_sctp = 132
};

// What a match says of the packet's protocols; -1 where it says nothing.
struct Layers {
    explicit Layers(const OfpFRMatch &match);

    bool is_ip() const { return eth_type == eth_ipv4 || eth_type == eth_ipv6; }
    bool is_arp() const { return eth_type == eth_arp || eth_type == eth_rarp; }
    bool carries(int proto) const { return is_ip() && ip_proto == proto; }

    bool in_port = false;
    int eth_type = -1;
    int ip_proto = -1;
    int icmp6_type = -1;
};

bool is_met(Needs needs, const Layers &layers);

// What follows "tp_dst needs".
std::string_view describe(Needs needs);

} // namespace ofpctl

// The rules that benchmarks encode and program.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>

#include "ofp.h"

namespace bench {

// A rule with all it points to; stays where it is built.
class Rule {
public:
    Rule()
    {
        item.priority = 100;
        item.match.mask = &mask;
        item.match.ipv6 = &ipv6;
        item.actions = actions.data();
    }
    Rule(const Rule &) = delete;
    Rule &operator=(const Rule &) = delete;

    void match(std::initializer_list<OfpFieldBit> fields)
    {
        for (OfpFieldBit field : fields)
            item.match.fields |= uint64_t{1} << field;
    }
    void masked(std::initializer_list<OfpFieldBit> fields)
    {
        for (OfpFieldBit field : fields)
            mask.masked |= uint64_t{1} << field;
    }
    void output(uint32_t port)
    {
        auto &action = outputs.at(item.action_count);
        action = {{OFP_ACTION_OUTPUT, sizeof action}, OFP_PORT_NUMBER, port};
        actions.at(item.action_count++) = &action.header;
    }
    void group(uint32_t id)
    {
        group_action = {{OFP_ACTION_GROUP, sizeof group_action}, id, 0};
        actions.at(item.action_count++) = &group_action.header;
    }

    OfpFlowItem item = {};
    OfpMatchMask mask = {};
    OfpMatchIpv6 ipv6 = {};

private:
    std::array<OfpActionOutput, 4> outputs = {};
    OfpActionGroup group_action = {};
    std::array<OfpAction *, 5> actions = {};
};

inline void in_port(Rule &rule)
{
    rule.match({OFP_FIELD_IN_PORT});
    rule.item.match.in_port = 7;
    rule.output(2);
}

inline void ipv4_five_tuple(Rule &rule)
{
    rule.match({OFP_FIELD_ETH_TYPE, OFP_FIELD_IP_PROTO, OFP_FIELD_IPV4_SRC, OFP_FIELD_IPV4_DST,
                OFP_FIELD_TCP_SRC, OFP_FIELD_TCP_DST});
    rule.masked({OFP_FIELD_IPV4_SRC, OFP_FIELD_IPV4_DST, OFP_FIELD_TCP_SRC});
    rule.item.match.eth_type = 0x0800;
    rule.item.match.ip_proto = 6;
    rule.item.match.ipv4_src = 0x0a000000;
    rule.item.match.ipv4_dst = 0xc0a80100;
    rule.item.match.tcp_src = 1024;
    rule.item.match.tcp_dst = 443;
    rule.mask.ipv4_src = 0xff000000;
    rule.mask.ipv4_dst = 0xffffff00;
    rule.mask.tcp_src = 0xfc00;
    rule.output(2);
}

inline void ipv6_group(Rule &rule)
{
    rule.match({OFP_FIELD_ETH_TYPE, OFP_FIELD_IP_PROTO, OFP_FIELD_IPV6_SRC, OFP_FIELD_IPV6_DST,
                OFP_FIELD_IPV6_FLABEL});
    rule.masked({OFP_FIELD_IPV6_SRC, OFP_FIELD_IPV6_DST, OFP_FIELD_IPV6_FLABEL});
    rule.item.match.eth_type = 0x86dd;
    rule.item.match.ip_proto = 17;
    rule.ipv6.ipv6_src[0] = 0x20;
    rule.ipv6.ipv6_dst[0] = 0xfe;
    rule.ipv6.ipv6_flabel = 0x12345;
    rule.mask.ipv6_src[0] = 0xff;
    rule.mask.ipv6_dst[0] = 0xff;
    rule.mask.ipv6_flabel = 0xfffff;
    rule.group(9);
}

inline void fifteen_fields(Rule &rule)
{
    rule.match({OFP_FIELD_IN_PORT, OFP_FIELD_METADATA, OFP_FIELD_ETH_DST, OFP_FIELD_ETH_SRC,
                OFP_FIELD_ETH_TYPE, OFP_FIELD_VLAN_VID, OFP_FIELD_VLAN_PCP, OFP_FIELD_IP_DSCP,
                OFP_FIELD_IP_ECN, OFP_FIELD_IP_PROTO, OFP_FIELD_IPV4_SRC, OFP_FIELD_IPV4_DST,
                OFP_FIELD_UDP_SRC, OFP_FIELD_UDP_DST, OFP_FIELD_TUNNEL_ID});
    rule.item.match.in_port = 7;
    rule.item.match.metadata = 0x1122334455667788;
    rule.item.match.eth_type = 0x0800;
    rule.item.match.vlan_vid = 100;
    rule.item.match.ip_proto = 17;
    rule.item.match.ipv4_src = 0x0a000001;
    rule.item.match.ipv4_dst = 0x0a000002;
    rule.item.match.udp_dst = 4789;
    rule.item.match.tunnel_id = 5000;
    rule.output(2);
    rule.output(3);
    rule.output(4);
}

} // namespace bench

// A table of rules to program: exact five-tuples, all distinct.
#pragma once

#include <cstdint>
#include <vector>

#include "ofp.h"

namespace bench {

constexpr uint16_t client = 4096;
constexpr uint8_t rule_table = 200;
constexpr uint32_t rules_of_a_datagram = 12;

class Table {
public:
    explicit Table(uint32_t rules) : items_(rules)
    {
        for (OfpFlowItem &item : items_) {
            item.priority = 100;
            for (unsigned bit : {OFP_FIELD_ETH_TYPE, OFP_FIELD_IP_PROTO, OFP_FIELD_IPV4_SRC,
                                 OFP_FIELD_IPV4_DST, OFP_FIELD_TCP_SRC, OFP_FIELD_TCP_DST})
                item.match.fields |= uint64_t{1} << bit;
            item.match.eth_type = 0x0800;
            item.match.ip_proto = 6;
            item.match.tcp_src = 1024;
            item.match.tcp_dst = 443;
            item.match.mask = &mask_;
            item.action_count = 1;
            item.actions = actions_;
        }
        number(0);
    }
    Table(const Table &) = delete;
    Table &operator=(const Table &) = delete;

    // Rules first to first + size: another number is another rule, neighbours lie apart.
    void number(uint32_t first)
    {
        for (OfpFlowItem &item : items_) {
            item.match.ipv4_src = first * 0x9e3779b1;
            item.match.ipv4_dst = first++;
        }
    }
    const OfpFlowItem *from(std::size_t index) const { return &items_[index]; }
    uint32_t size() const { return static_cast<uint32_t>(items_.size()); }

private:
    std::vector<OfpFlowItem> items_;
    OfpMatchMask mask_ = {};
    OfpActionOutput output_ = {{OFP_ACTION_OUTPUT, sizeof output_}, OFP_PORT_NUMBER, 3};
    OfpAction *actions_[1] = {&output_.header};
};

} // namespace bench

// A table of rules to program: five-tuples, all distinct and without overlap.
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
    // Of one mask combination all addresses are exact; of 200, prefixes.
    explicit Table(uint32_t rules, uint32_t masks = 1) : items_(rules), masks_(masks)
    {
        for (OfpFlowItem &item : items_) {
            item.priority = 100;
            for (unsigned bit : {OFP_FIELD_ETH_TYPE, OFP_FIELD_IP_PROTO, OFP_FIELD_IPV4_SRC,
                                 OFP_FIELD_IPV4_DST, OFP_FIELD_TCP_SRC, OFP_FIELD_TCP_DST})
                item.match.fields |= uint64_t{1} << bit;
            item.match.eth_type = 0x0800;
            item.match.ip_proto = 6;
            item.action_count = 1;
            item.actions = actions_;
        }
        for (uint32_t i = 0; i < masks; ++i)
            masks_[i] = masks == 1 ? mask_of(32, 32) : mask_of(8 + i % 25, 16 + 2 * (i / 25 % 8));
        number(0);
    }
    Table(const Table &) = delete;
    Table &operator=(const Table &) = delete;

    // Rules first to first + size: another number is another rule, neighbours lie apart.
    void number(uint32_t first)
    {
        for (OfpFlowItem &item : items_) {
            OfpMatchMask &mask = masks_[first % masks_.size()];
            item.match.mask = &mask;
            item.match.tcp_src = static_cast<uint16_t>(first);
            item.match.tcp_dst = static_cast<uint16_t>(first >> 16);
            item.match.ipv4_src = first * 0x9e3779b1 & mask.ipv4_src;
            item.match.ipv4_dst = first++ & mask.ipv4_dst;
        }
    }
    const OfpFlowItem *from(std::size_t index) const { return &items_[index]; }
    uint32_t size() const { return static_cast<uint32_t>(items_.size()); }

private:
    static OfpMatchMask mask_of(uint32_t src_length, uint32_t dst_length)
    {
        OfpMatchMask mask = {};
        mask.ipv4_src = ~uint32_t{0} << (32 - src_length);
        mask.ipv4_dst = ~uint32_t{0} << (32 - dst_length);
        mask.masked = uint64_t{src_length < 32} << OFP_FIELD_IPV4_SRC | uint64_t{dst_length < 32}
                                                                            << OFP_FIELD_IPV4_DST;
        return mask;
    }

    std::vector<OfpFlowItem> items_;
    std::vector<OfpMatchMask> masks_;
    OfpActionOutput output_ = {{OFP_ACTION_OUTPUT, sizeof output_}, OFP_PORT_NUMBER, 3};
    OfpAction *actions_[1] = {&output_.header};
};

} // namespace bench

// The true size of what a rule becomes, so that nothing is encoded into a buffer that does not hold
// it: the size that cuts batches leaves some of a rule out.
#pragma once

#include "ofp/flow_item.h"

namespace ofp {

inline constexpr uint64_t tlv_header_size = 4;
inline constexpr uint64_t instruction_header_size = 8;
inline constexpr uint64_t barrier_tlv_size = 12;
inline constexpr uint64_t batch_head_size = 28; // message head and TLV 121

// The bytes a rule adds to a datagram: its flow-mod and its barrier request, each in a TLV.
uint64_t rule_size(const OfpFlowItem &item);

} // namespace ofp

#include "flow/exact_size.h"

#include "flow/action.h"
#include "flow/oxm_size.h"
#include "ofp/wire_flow.h"

namespace ofp {

uint64_t rule_size(const OfpFlowItem &item)
{
    uint64_t size = tlv_header_size + sizeof(OfpFlowMod) + match_size(item.match) +
                    instruction_header_size + barrier_tlv_size;
    for (uint32_t i = 0; i < item.action_count; ++i)
        size += action_size(*item.actions[i]);
    return size;
}

} // namespace ofp

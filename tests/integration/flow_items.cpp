#include "integration/flow_items.h"

#include "integration/agent_test.h"

namespace integration {

OfpFlowItem &FlowItems::add(uint32_t in_port, uint16_t priority)
{
    Owned &owned = owned_.emplace_back();
    owned.output = {{OFP_ACTION_OUTPUT, sizeof owned.output}, OFP_PORT_NUMBER, 3};
    owned.actions[0] = &owned.output.header;
    OfpFlowItem item{};
    item.priority = priority;
    item.match.fields = uint64_t{1} << OFP_FIELD_IN_PORT;
    item.match.in_port = in_port;
    item.match.mask = &owned.mask;
    item.action_count = 1;
    item.actions = owned.actions;
    items_.push_back(item);
    return items_.back();
}

void FlowItems::add_range(uint32_t first, uint32_t count)
{
    for (uint32_t port = first; port < first + count; ++port) {
        add(port);
    }
}

void FlowItems::last_to_group(uint32_t group_id)
{
    Owned &owned = owned_.back();
    owned.group = {{OFP_ACTION_GROUP, sizeof owned.group}, group_id, 0};
    owned.actions[0] = &owned.group.header;
}

std::vector<uint64_t> add_rules(const FlowItems &items, uint32_t *call)
{
    std::vector<uint64_t> results(items.size(), UINT64_MAX);
    const uint32_t code =
        OFP_AddFlowRule(CLIENT, TABLE, items.size(), items.data(), results.data());
    if (call) {
        *call = code;
    }
    return results;
}

namespace {

Datagram encoded(const FlowItems &items, const OfpFlowRuleCtx &request)
{
    const OfpClientHead head{.smooth_mode = SMOOTH_MODE,
                             .zone_id = 0,
                             .smooth_id = SMOOTH_ID,
                             .local_lip = 0,
                             .client_id = CLIENT};
    Datagram datagram(OFP_encode_GetRuleMsgLen(items.size(), items.data()) + 64);
    datagram.resize(OFP_encode_FlowRule(&request, reinterpret_cast<const uint8_t *>(&head),
                                        items.size(), items.data(), datagram.size(),
                                        datagram.data()));
    return datagram;
}

} // namespace

Datagram batch_of(const FlowItems &items)
{
    return encoded(items, {.client_id = CLIENT, .table_id = TABLE});
}

Datagram asynchronous_batch_of(const FlowItems &items, uint32_t xid)
{
    return encoded(items, {.xid = xid, .client_id = CLIENT, .asynchronous = 1, .table_id = TABLE});
}

} // namespace integration

#include "flow/rule_check.h"

#include <span>

#include "flow/oxm.h"
#include "ofp/flow.h"
#include "ofp/result.h"

namespace ofp {
namespace {

// In-port, normal, flood, all, controller and local; not table (0xfffffff9) and not any (all ones).
constexpr bool is_reserved_port(uint32_t port)
{
    return port == 0xfffffff8 || (port >= 0xfffffffa && port <= 0xfffffffe);
}

bool check_output(const OfpActionOutput &output)
{
    switch (output.port_kind) {
    case OFP_PORT_NUMBER:
        return output.port >= 1 && output.port <= 0xffffff00;
    case OFP_PORT_RESERVED:
        return is_reserved_port(output.port);
    default:
        return false;
    }
}

bool check_action(const OfpAction *action)
{
    if (action == nullptr)
        return false;
    if (action->type == OFP_ACTION_OUTPUT)
        return check_output(reinterpret_cast<const OfpActionOutput &>(*action));
    return action->type == OFP_ACTION_GROUP || action->type == OFP_ACTION_EXPERIMENTER;
}

bool check_actions(const OfpFlowItem &item)
{
    if (item.action_count != 0 && item.actions == nullptr)
        return false;
    for (const OfpAction *action : std::span(item.actions, item.action_count)) {
        if (!check_action(action))
            return false;
    }
    return true;
}

// The lists that encoding follows hold what they count.
bool check_lists(const OfpFRMatch &match)
{
    if (has_bit(match.fields, OFP_FIELD_BATCH_IF) && match.batch_if.if_index == nullptr)
        return false;
    for (const OfpExpMatchItem *item : std::span(match.exp_match.items, match.exp_match.count)) {
        if (item == nullptr)
            return false;
    }
    return true;
}

bool check_rule(const OfpFlowItem &item)
{
    if (item.priority == 0 && item.match.fields == 0)
        return false;
    return OFP_encodeoxm_CheckMatch(&item.match) == OFP_RC_OK && check_lists(item.match) &&
           check_actions(item);
}

} // namespace

bool check_rules(uint32_t count, const OfpFlowItem *items, uint64_t *results)
{
    for (uint32_t i = 0; i < count; ++i) {
        if (check_rule(items[i]))
            continue;
        if (results != nullptr)
            results[i] = OFP_RC_INVALID;
        return false;
    }
    return true;
}

} // namespace ofp

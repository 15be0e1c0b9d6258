#include "flow/action.h"

#include "flow/oxm.h"
#include "wire/dispatch_table.h"

namespace ofp {
namespace {

const OfpActionExperimenter &as_experimenter(const OfpAction &action)
{
    return reinterpret_cast<const OfpActionExperimenter &>(action);
}

using ExperimenterBody = void (*)(const OfpActionExperimenter &action, uint8_t *out);

void put_two_values(const OfpActionExperimenter &action, uint8_t *out)
{
    put(out, action.body.value);
}

void put_one_value(const OfpActionExperimenter &action, uint8_t *out)
{
    put(out, action.body.value[0]);
}

void put_mac(const OfpActionExperimenter &action, uint8_t *out) { put(out, action.body.mac); }

struct ExperimenterAction {
    ExperimenterBody put_body; // at byte 12
    uint8_t size;
};

constexpr auto experimenter_actions = by_number<ExperimenterAction, 3>({
    {0, {put_two_values, 24}},
    {1, {put_one_value, 16}},
    {2, {put_one_value, 16}},
    {3, {put_mac, 24}},
});

} // namespace

uint64_t put_experimenter(const OfpActionExperimenter &action, uint8_t *out)
{
    const ExperimenterAction form = experimenter_actions[action.subtype];
    if (form.put_body == nullptr)
        return 0;
    std::memset(out, 0, form.size);
    put(out, uint64_t{OFP_ACTION_EXPERIMENTER} << 48 | uint64_t{form.size} << 32 | experimenter_id);
    put(out + 8, action.subtype);
    form.put_body(action, out + 12);
    return form.size;
}

uint64_t action_size(const OfpAction &action)
{
    if (action.type == OFP_ACTION_OUTPUT)
        return output_size;
    if (action.type == OFP_ACTION_GROUP)
        return group_size;
    return experimenter_actions[as_experimenter(action).subtype].size;
}

uint64_t counted_action_size(const OfpAction &action)
{
    if (action.type == OFP_ACTION_OUTPUT)
        return output_size;
    if (action.type == OFP_ACTION_GROUP)
        return group_size;
    if (action.type != OFP_ACTION_EXPERIMENTER)
        return 0;
    return experimenter_actions[as_experimenter(action).size_subtype].size;
}

} // namespace ofp

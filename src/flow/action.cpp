#include "flow/action.h"

#include "flow/oxm.h"
#include "wire/dispatch_table.h"

namespace ofp {
namespace {

constexpr uint64_t output_size = 16;
constexpr uint64_t group_size = 8;

void put_action_head(uint16_t type, uint64_t size, uint8_t *out)
{
    std::memset(out, 0, size);
    put(out, type);
    put(out + 2, static_cast<uint16_t>(size));
}

// max_len stays 0.
uint64_t put_output(const OfpAction &action, uint8_t *out)
{
    put_action_head(OFP_ACTION_OUTPUT, output_size, out);
    put(out + 4, reinterpret_cast<const OfpActionOutput &>(action).port);
    return output_size;
}

uint64_t put_group(const OfpAction &action, uint8_t *out)
{
    put_action_head(OFP_ACTION_GROUP, group_size, out);
    put(out + 4, reinterpret_cast<const OfpActionGroup &>(action).group_id);
    return group_size;
}

const OfpActionExperimenter &as_experimenter(const OfpAction &action)
{
    return reinterpret_cast<const OfpActionExperimenter &>(action);
}

void put_experimenter_head(uint32_t subtype, uint64_t size, uint8_t *out)
{
    put_action_head(OFP_ACTION_EXPERIMENTER, size, out);
    put(out + 4, experimenter_id);
    put(out + 8, subtype);
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

uint64_t put_experimenter(const OfpAction &action, uint8_t *out)
{
    const OfpActionExperimenter &experimenter = as_experimenter(action);
    const ExperimenterAction form = experimenter_actions[experimenter.subtype];
    if (form.put_body == nullptr)
        return 0;
    put_experimenter_head(experimenter.subtype, form.size, out);
    form.put_body(experimenter, out + 12);
    return form.size;
}

} // namespace

uint64_t put_action(const OfpAction &action, uint8_t *out)
{
    if (action.type == OFP_ACTION_OUTPUT)
        return put_output(action, out);
    if (action.type == OFP_ACTION_GROUP)
        return put_group(action, out);
    return put_experimenter(action, out);
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

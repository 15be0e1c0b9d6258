// Actions as OpenFlow 1.3 has them, inside the one write-actions instruction of a rule.
#pragma once

#include "flow/put.h"
#include "ofp/flow_item.h"

namespace ofp {

inline constexpr uint64_t output_size = 16;
inline constexpr uint64_t group_size = 8;

// max_len stays 0.
inline uint64_t put_output(uint32_t port, uint8_t *out)
{
    put(out, uint64_t{OFP_ACTION_OUTPUT} << 48 | output_size << 32 | port);
    put(out + 8, uint64_t{0});
    return output_size;
}

inline uint64_t put_group(uint32_t group_id, uint8_t *out)
{
    put(out, uint64_t{OFP_ACTION_GROUP} << 48 | group_size << 32 | group_id);
    return group_size;
}

// A subtype that is not known writes nothing.
uint64_t put_experimenter(const OfpActionExperimenter &action, uint8_t *out);

// Writes one action and returns its bytes.
inline uint64_t put_action(const OfpAction &action, uint8_t *out)
{
    if (action.type == OFP_ACTION_OUTPUT)
        return put_output(reinterpret_cast<const OfpActionOutput &>(action).port, out);
    if (action.type == OFP_ACTION_GROUP)
        return put_group(reinterpret_cast<const OfpActionGroup &>(action).group_id, out);
    return put_experimenter(reinterpret_cast<const OfpActionExperimenter &>(action), out);
}

// The same bytes, not written.
uint64_t action_size(const OfpAction &action);

// What batch cutting counts for an action.
uint64_t counted_action_size(const OfpAction &action);

} // namespace ofp

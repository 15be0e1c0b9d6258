// Actions as OpenFlow 1.3 has them, inside the one write-actions instruction of a rule.
#ifndef OFP_FLOW_ACTION_H
#define OFP_FLOW_ACTION_H

#include "ofp/flow_item.h"

namespace ofp {

// Writes one action and returns its bytes; an experimenter subtype that is not known has none.
uint64_t put_action(const OfpAction &action, uint8_t *out);

// The same bytes, not written.
uint64_t action_size(const OfpAction &action);

// What batch cutting counts for an action.
uint64_t counted_action_size(const OfpAction &action);

} // namespace ofp

#endif

// The experimenter matches of a rule, which follow its fields on the wire.
#pragma once

#include "ofp/flow_item.h"

namespace ofp {

// Writes the list in order and returns its bytes. A string of a kind other than 1 at its end leaves
// its kind word behind them.
uint64_t put_experimenter_items(const OfpExpMatchList &list, uint8_t *out);

uint64_t experimenter_items_size(const OfpExpMatchList &list);

} // namespace ofp

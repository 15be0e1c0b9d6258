// The true size of a match, beside the one that batch cutting counts.
#pragma once

#include "ofp/flow_item.h"

namespace ofp {

// What OFP_encodeoxm_Fill returns. A string match of a kind other than 1 at the end of the list
// makes it write up to 4 bytes more, which belong to whatever follows the match.
uint64_t match_size(const OfpFRMatch &match);

// Some field announces a mask that it does not have: its place is skipped, not written.
bool leaves_gaps(const OfpFRMatch &match);

} // namespace ofp

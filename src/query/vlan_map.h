// VLAN maps of replies.
#pragma once

#include "ipc/tlv_range.h"
#include "ofp/platform.h"

namespace ofp {

// Copies a TLV 90 into the caller's bitmap as far as that has room. Does nothing without a bitmap,
// or with a value that claims more bits than one can hold.
void copy_vlan_map(const Tlv &tlv, Bitmap *to);

} // namespace ofp

// What the library speaks of OpenFlow 1.3. Message headers are in network order.
#ifndef OFP_FLOW_OPENFLOW_H
#define OFP_FLOW_OPENFLOW_H

#include "ofp/wire_flow.h"
#include "wire/swap_members.h"

namespace ofp {

inline constexpr uint8_t openflow_version = 4;

enum OpenflowType : uint8_t {
    OFPT_ERROR = 1,
    OFPT_FLOW_MOD = 14,
    OFPT_GROUP_MOD = 15,
    OFPT_BARRIER_REQUEST = 20,
    OFPT_BARRIER_REPLY = 21,
};

constexpr OfpOpenflowHeader openflow_header(OpenflowType type, uint64_t length, uint32_t xid)
{
    return {.version = openflow_version,
            .type = type,
            .length = swapped(static_cast<uint16_t>(length)),
            .xid = swapped(xid)};
}

} // namespace ofp

#endif

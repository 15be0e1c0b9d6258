// What the library speaks of OpenFlow 1.3.
#pragma once

#include "flow/put.h"
#include "ofp/wire_flow.h"

namespace ofp {

inline constexpr uint8_t openflow_version = 4;

enum OpenflowType : uint8_t {
    OFPT_ERROR = 1,
    OFPT_FLOW_MOD = 14,
    OFPT_GROUP_MOD = 15,
    OFPT_BARRIER_REQUEST = 20,
    OFPT_BARRIER_REPLY = 21,
};

enum OpenflowCommand : uint32_t {
    OFPFC_ADD = 0,
    OFPFC_MODIFY = 2,
    OFPFC_DELETE = 3,
    OFPFC_DELETE_STRICT = 4,
};

inline void put_openflow_header(OpenflowType type, uint64_t length, uint32_t xid, uint8_t *out)
{
    put(out,
        uint64_t{openflow_version} << 56 | uint64_t{type} << 48 | (length & 0xffff) << 32 | xid);
}

} // namespace ofp

#include "flow/error_map.h"

#include <span>

#include "ofp/result.h"
#include "wire/dispatch_table.h"

namespace ofp {
namespace {

constexpr uint32_t FAILED = OFP_RC_FAILED;
constexpr uint32_t INVALID = OFP_RC_INVALID;
constexpr uint32_t NO_ROOM = OFP_RC_NO_RESOURCE;
constexpr uint32_t STATE = OFP_RC_STATE;

// By error code of OpenFlow 1.3; a code beyond its table is a failure.
constexpr uint32_t bad_request[] = {FAILED, FAILED, FAILED, FAILED,  FAILED, FAILED,
                                    FAILED, FAILED, FAILED, INVALID, FAILED, INVALID};

constexpr uint32_t bad_action[] = {INVALID, FAILED, FAILED,  FAILED, INVALID,
                                   INVALID, FAILED, INVALID, FAILED, INVALID};

constexpr uint32_t bad_instruction[] = {INVALID, INVALID, INVALID};

constexpr uint32_t bad_match[] = {INVALID, FAILED,  INVALID, INVALID, INVALID, INVALID,
                                  INVALID, INVALID, INVALID, INVALID, INVALID};

constexpr uint32_t flow_mod_failed[] = {
    FAILED,  // unknown
    NO_ROOM, // table full
    INVALID, // bad table id
    STATE,   // overlap
    FAILED,  // permissions
    FAILED,  // bad time-out
    INVALID, // bad command
    INVALID, // bad flags
};

constexpr uint32_t group_mod_failed[] = {
    STATE,   // group exists
    INVALID, // invalid group
    INVALID, // weight unsupported
    NO_ROOM, // out of groups
    NO_ROOM, // out of buckets
    INVALID, // chaining unsupported
    INVALID, // watch unsupported
    FAILED,  // loop
    INVALID, // unknown group
    FAILED,  // chained group
    INVALID, // bad type
    INVALID, // bad command
    INVALID, // bad bucket
};

constexpr auto error_types = by_number<std::span<const uint32_t>, 6>({
    {1, bad_request},
    {2, bad_action},
    {3, bad_instruction},
    {4, bad_match},
    {5, flow_mod_failed},
    {6, group_mod_failed},
});

} // namespace

uint32_t map_error(uint16_t type, uint16_t code)
{
    const auto codes = error_types[type];
    return code < codes.size() ? codes[code] : FAILED;
}

} // namespace ofp

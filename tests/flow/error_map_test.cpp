#include "flow/error_map.h"

#include <vector>

#include <gtest/gtest.h>

#include "ofp/result.h"

using ofp::map_error;

namespace {

constexpr uint32_t failed = OFP_RC_FAILED;
constexpr uint32_t invalid = OFP_RC_INVALID;
constexpr uint32_t no_room = OFP_RC_NO_RESOURCE;
constexpr uint32_t state = OFP_RC_STATE;

// The results of codes 0, 1, ...; every code beyond them is a failure.
void expect(uint16_t type, const std::vector<uint32_t> &results)
{
    for (uint32_t code = 0; code < 0x10000; ++code) {
        EXPECT_EQ(map_error(type, static_cast<uint16_t>(code)),
                  code < results.size() ? results[code] : failed)
            << "type " << type << " code " << code;
    }
}

} // namespace

TEST(ErrorMap, BadRequest)
{
    expect(1, {failed, failed, failed, failed, failed, failed, failed, failed, failed, invalid,
               failed, invalid});
}

TEST(ErrorMap, BadAction)
{
    expect(2,
           {invalid, failed, failed, failed, invalid, invalid, failed, invalid, failed, invalid});
}

TEST(ErrorMap, BadInstruction) { expect(3, {invalid, invalid, invalid}); }

TEST(ErrorMap, BadMatch)
{
    expect(4, {invalid, failed, invalid, invalid, invalid, invalid, invalid, invalid, invalid,
               invalid, invalid});
}

TEST(ErrorMap, FlowModFailed)
{
    expect(5, {failed, no_room, invalid, state, failed, failed, invalid, invalid});
}

TEST(ErrorMap, GroupModFailed)
{
    expect(6, {state, invalid, invalid, no_room, no_room, invalid, invalid, failed, invalid, failed,
               invalid, invalid, invalid});
}

TEST(ErrorMap, OtherTypesAreFailures)
{
    for (uint32_t type = 0; type < 0x10000; ++type) {
        if (type < 1 || type > 6) {
            EXPECT_EQ(map_error(static_cast<uint16_t>(type), 0), failed) << type;
        }
    }
    EXPECT_EQ(map_error(0xffff, 0xffff), failed);
}

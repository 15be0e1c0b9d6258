#include <cstring>

#include "ofp/flow_item.h"
#include "ofp/platform.h"
#include "ofp/result.h"

namespace {

constexpr int16_t any_node = -32768;
constexpr uint32_t acl_resource = 0x700032;

} // namespace

OFP_API uint32_t OFP_util_GetAclResource(uint8_t out[6])
{
    uint8_t answer[6] = {};
    uint32_t length = 0;
    std::memset(out, 0, sizeof answer);
    const uint32_t result =
        CIOCTL(any_node, acl_resource, nullptr, 0, answer, sizeof answer, &length);
    if (result == OFP_RC_OK && length == sizeof answer)
        std::memcpy(out, answer, sizeof answer);
    return result;
}

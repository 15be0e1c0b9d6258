#include "config/configure.h"

namespace ofp {

uint32_t configure(uint32_t code, uint32_t type, const void *value, uint64_t length)
{
    const Channel channel(set_connect());
    if (!channel.is_open())
        return OFP_RC_FAILED;
    return OFP_set_SendBasicMsg(channel.socket(), code, type, length, value);
}

uint32_t notify(uint32_t code, uint32_t type, const void *value, uint64_t length)
{
    const Channel channel(set_connect());
    if (!channel.is_open())
        return OFP_RC_FAILED;
    return OFP_util_SendBasicMsg(channel.socket(), code, type, length, value);
}

} // namespace ofp

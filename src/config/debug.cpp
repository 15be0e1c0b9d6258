#include "config/configure.h"
#include "ofp/config.h"
#include "ofp/message.h"

namespace ofp {
namespace {

// Debugging looks at the agent daemon as it is, so it is never started, and the code says why there
// is no channel.
template <WireRecord T>
uint32_t configure_running(uint32_t code, uint32_t type, const T &record)
{
    if (!OFP_util_IsDaemonStart())
        return OFP_RC_DAEMON_DOWN;
    uint64_t result;
    const Channel channel(OFP_plgn_Connect(request_timeout, &result));
    return channel.is_open()
               ? OFP_set_SendBasicMsg(channel.socket(), code, type, sizeof record, &record)
               : static_cast<uint32_t>(result);
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_set_GlbDebug(const OfpGlbDebug *debug)
{
    return ofp::configure_running(OFP_MSG_SET_GLB_DEBUG, OFP_TLV_GlbDebug, *debug);
}

OFP_API uint32_t OFP_set_TDTestGlbDebug(const OfpTDTestGlbDebug *debug)
{
    return ofp::configure_running(OFP_MSG_SET_TD_TEST_GLB_DEBUG, OFP_TLV_TDTestGlbDebug, *debug);
}

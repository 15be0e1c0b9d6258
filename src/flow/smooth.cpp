#include "flow/smooth.h"

#include "flow/client.h"
#include "flow/reply.h"
#include "ipc/channel.h"
#include "ofp/flow.h"
#include "ofp/message.h"
#include "ofp/platform.h"
#include "ofp/result.h"

namespace ofp {
namespace {

constexpr uint32_t no_smooth = 0xffffffff;

struct Smooth {
    uint32_t id;
    uint32_t mode;
};

constinit Smooth smooth = {.id = no_smooth, .mode = 2};

uint32_t send_head(int32_t socket, uint32_t code, uint16_t client_id)
{
    const OfpClientHead head = client_head(client_id);
    return OFP_util_SendBasicMsg(socket, code, OFP_TLV_ClientHead, sizeof head, &head);
}

uint32_t announce_start(uint16_t client_id)
{
    const Channel channel(connect_client(client_id));
    if (!channel.is_open())
        return OFP_RC_FAILED;
    const uint32_t result = send_head(channel.socket(), OFP_MSG_SMOOTH_START, client_id);
    return result == OFP_RC_OK ? wait_for_barrier(channel.socket()) : result;
}

} // namespace

bool smooth_is_open() { return smooth.id != no_smooth; }

OfpClientHead client_head(uint16_t client_id)
{
    return {
        .smooth_mode = smooth.mode,
        .zone_id = ZONE_GetCurrentZone(),
        .smooth_id = smooth.id,
        .local_lip = LIP_GetLocalLip(),
        .client_id = client_id,
    };
}

} // namespace ofp

using namespace ofp;

OFP_API uint32_t OFP_SmoothStart(uint16_t client_id, uint32_t smooth_id, uint32_t mode)
{
    if (!is_client(client_id) || smooth_id == no_smooth || mode > 1)
        return OFP_RC_FAILED;
    if (smooth_is_open() && (smooth.id != smooth_id || smooth.mode != mode))
        return OFP_RC_FAILED;

    const Smooth before = smooth;
    smooth = {.id = smooth_id, .mode = mode}; // the head carries it
    const uint32_t result = announce_start(client_id);
    if (result != OFP_RC_OK)
        smooth = before;
    return result;
}

OFP_API uint32_t OFP_SmoothEnd(uint16_t client_id)
{
    if (!is_client(client_id) || !smooth_is_open())
        return OFP_RC_FAILED;
    const Channel channel(connect_client(client_id));
    if (!channel.is_open())
        return OFP_RC_FAILED;
    // Nobody could act on a lost end: the next smooth start must repeat the period in any case.
    send_head(channel.socket(), OFP_MSG_SMOOTH_END, client_id);
    return OFP_RC_OK;
}

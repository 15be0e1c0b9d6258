#include "flow/client.h"

#include "ofp/channel.h"
#include "ofp/result.h"
#include "ofp/util.h"

namespace ofp {
namespace {

constexpr uint16_t container_client = 4097; // lives in a device context of its own
constexpr uint64_t time_out = 30;           // seconds

} // namespace

int32_t connect_client(uint16_t client_id)
{
    if (OFP_util_StartDaemon() != OFP_RC_OK)
        return -1;
    if (client_id == container_client)
        return OFP_plgn_ConnectVfw();
    uint64_t ignored;
    return OFP_plgn_Connect(time_out, &ignored);
}

ClientChannel::~ClientChannel()
{
    if (is_open())
        OFP_plgn_Close(socket_);
}

} // namespace ofp

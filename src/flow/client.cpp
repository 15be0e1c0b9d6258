#include "flow/client.h"

#include "ipc/channel.h"
#include "ofp/result.h"
#include "ofp/util.h"

namespace ofp {

int32_t connect_client(uint16_t client_id)
{
    constexpr uint16_t container_client = 4097; // its socket works in the current container
    if (OFP_util_StartDaemon() != OFP_RC_OK)
        return -1;
    if (client_id == container_client)
        return OFP_plgn_ConnectVfw();
    uint64_t result; // the caller reports any failure as OFP_RC_FAILED
    return OFP_plgn_Connect(request_timeout, &result);
}

} // namespace ofp

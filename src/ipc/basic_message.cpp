#include "ipc/channel.h"
#include "ipc/round_trip.h"
#include "ofp/codec.h"
#include "ofp/result.h"

OFP_API uint32_t OFP_util_SendBasicMsg(int32_t socket, uint32_t code, uint32_t type,
                                       uint64_t length, const void *value)
{
    uint8_t request[OFP_DATAGRAM_SIZE];
    // A value that does not fit goes out as an empty datagram, which counts as sent.
    const uint64_t size = OFP_msg_EncapBasicMsg(request, sizeof request, code, type, length, value);
    return OFP_util_Send(socket, request, size);
}

OFP_API uint32_t OFP_set_SendBasicMsg(int32_t socket, uint32_t code, uint32_t type, uint64_t length,
                                      const void *value)
{
    if (OFP_util_SendBasicMsg(socket, code, type, length, value) != OFP_RC_OK)
        return OFP_RC_SEND_FAILED;
    return ofp::await_result(socket);
}

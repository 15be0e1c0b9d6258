#include "ipc/round_trip.h"

#include "ipc/channel.h"
#include "ofp/codec.h"
#include "ofp/message.h"
#include "ofp/result.h"
#include "ofp/util.h"

namespace ofp {

int32_t set_connect()
{
    if (OFP_util_StartDaemon() != OFP_RC_OK)
        return -1;
    uint64_t result;
    return OFP_plgn_Connect(request_timeout, &result);
}

uint32_t set_send_message(int32_t socket, Bytes datagram)
{
    if (OFP_util_Send(socket, datagram.data, datagram.size) != OFP_RC_OK)
        return OFP_RC_SEND_FAILED;
    return await_result(socket);
}

uint32_t await_result(int32_t socket)
{
    uint8_t reply[OFP_DATAGRAM_SIZE];
    const uint64_t length = OFP_util_Recv(socket, sizeof reply, reply);
    if (length == 0)
        return OFP_RC_NO_REPLY;
    uint32_t code = OFP_RC_OK; // also for a reply of another kind, which callers take as success
    read_result({reply, length}, &code);
    return code;
}

bool read_result(Bytes datagram, uint32_t *code)
{
    return OFP_msg_DecapBasicMsg(datagram.data, datagram.size, OFP_MSG_RESULT, OFP_TLV_ErrCode,
                                 sizeof *code, code) != 0;
}

} // namespace ofp

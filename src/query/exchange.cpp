#include "query/exchange.h"

#include "ipc/round_trip.h"
#include "ofp/result.h"
#include "ofp/util.h"

namespace ofp {

Bytes behind_head(Bytes datagram)
{
    const uint64_t head = OFP_msg_GetMsgHead(datagram.data, datagram.size, nullptr);
    return head != 0 ? datagram.from(datagram.data + head) : Bytes{datagram.data, 0};
}

uint32_t Reply::code() const
{
    uint32_t code = 0;
    OFP_msg_GetMsgHead(buffer, length, &code);
    return code;
}

Exchange::Exchange(uint32_t request) : Exchange()
{
    uint8_t head[sizeof(OfpMsgHead) + 4];
    send(Writer(head, sizeof head).head(request).bytes());
}

Exchange::Exchange(uint32_t request, uint32_t type, const void *value, uint64_t length) : Exchange()
{
    if (ok())
        code_ = OFP_util_SendBasicMsg(channel_.socket(), request, type, length, value);
}

void Exchange::send(Bytes request)
{
    if (ok())
        code_ = OFP_util_Send(channel_.socket(), request.data, request.size);
}

uint32_t Exchange::raw(uint64_t size, uint8_t *buffer, uint64_t *length)
{
    if (!ok())
        return code();
    const uint64_t received = OFP_util_Recv(channel_.socket(), size, buffer);
    uint32_t answered = OFP_RC_OK;
    if (received == 0)
        code_ = OFP_RC_NO_REPLY;
    else if (read_result({buffer, received}, &answered))
        code_ = answered;
    else
        *length = received;
    return code();
}

// A query leaves the agent daemon alone when it does not run.
int32_t Exchange::connect(uint64_t *code)
{
    if (OFP_util_IsDaemonStart())
        return OFP_plgn_Connect(request_timeout, code);
    *code = OFP_RC_DAEMON_DOWN;
    return -1;
}

uint32_t Exchange::receive_value(uint32_t reply, uint32_t type, uint64_t size, void *record)
{
    if (!ok())
        return code();
    uint8_t buffer[OFP_DATAGRAM_SIZE];
    const uint64_t length = OFP_util_Recv(channel_.socket(), sizeof buffer, buffer);
    uint32_t answered = OFP_RC_OK;
    if (length == 0)
        answered = OFP_RC_NO_REPLY;
    else if (OFP_msg_DecapBasicMsg(buffer, length, reply, type, size, record) == 0)
        read_result({buffer, length}, &answered);
    code_ = answered;
    return code();
}

} // namespace ofp

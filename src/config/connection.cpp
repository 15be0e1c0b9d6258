#include "config/configure.h"
#include "ofp/config.h"
#include "ofp/message.h"

using ofp::configure;

OFP_API uint32_t OFP_set_EchoTime(const OfpEchoTime *time)
{
    return configure(OFP_MSG_SET_ECHO_TIME, OFP_TLV_EchoTime, *time);
}

OFP_API uint32_t OFP_set_ReconnectTime(const OfpReconnectTime *time)
{
    return configure(OFP_MSG_SET_RECONNECT_TIME, OFP_TLV_ReconnectTime, *time);
}

OFP_API uint32_t OFP_set_ConnectionMode(const OfpConnMode *mode)
{
    return configure(OFP_MSG_SET_CONNECTION_MODE, OFP_TLV_ConnMode, *mode);
}

OFP_API uint32_t OFP_set_FailOpen(const OfpFailOpen *mode)
{
    return configure(OFP_MSG_SET_FAIL_OPEN, OFP_TLV_FailOpen, *mode);
}

OFP_API uint32_t OFP_set_TcpDscp(const OfpTcpDscp *dscp)
{
    return configure(OFP_MSG_SET_TCP_DSCP, OFP_TLV_TcpDscp, *dscp);
}

OFP_API uint32_t OFP_set_TcpNsr(uint16_t instance_id, uint16_t enable)
{
    return configure(OFP_MSG_SET_TCP_NSR, OFP_TLV_TcpNsr,
                     OfpTcpNsr{.instance_id = instance_id, .enable = enable});
}

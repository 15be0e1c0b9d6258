#include "config/configure.h"
#include "ofp/config.h"
#include "ofp/message.h"

using ofp::configure;

OFP_API uint32_t OFP_set_ForbiddenPort(uint16_t instance_id, uint32_t ports)
{
    return configure(OFP_MSG_SET_FORBIDDEN_PORT, OFP_TLV_ForbiddenPort,
                     OfpForbiddenPort{.ports = ports, .instance_id = instance_id});
}

OFP_API uint32_t OFP_set_PermitPortType(uint16_t instance_id, uint32_t port_types)
{
    return configure(OFP_MSG_SET_PERMIT_PORT_TYPE, OFP_TLV_PermitPortType,
                     OfpPermitPortType{.port_types = port_types, .instance_id = instance_id});
}

OFP_API uint32_t OFP_set_BindPort(uint32_t message_code, const OfpPortInstanceCfg *port)
{
    return configure(message_code, OFP_TLV_PortInstanceCfg, *port);
}

OFP_API uint32_t OFP_set_PortBindInst(uint32_t message_code, uint16_t instance_id,
                                      uint32_t if_index)
{
    if (!OFP_util_IsDaemonStart())
        return OFP_RC_PORT_NO_DAEMON;
    return configure(message_code, OFP_TLV_PortInstanceCfg,
                     OfpPortInstanceCfg{.if_index = if_index, .instance_id = instance_id});
}

OFP_API uint32_t OFP_set_PortShutdown(uint32_t message_code, uint32_t if_index)
{
    return configure(message_code, OFP_TLV_PortShutdown, OfpPortShutdown{.if_index = if_index});
}

OFP_API uint32_t OFP_set_LoopProtect(uint16_t instance_id, uint16_t enable)
{
    return configure(OFP_MSG_SET_LOOP_PROTECT, OFP_TLV_LoopProtection,
                     OfpLoopProtection{.instance_id = instance_id, .enable = enable});
}

#include <algorithm>
#include <bit>

#include "config/configure.h"
#include "ofp/config.h"
#include "ofp/message.h"

using ofp::configure;

OFP_API uint32_t OFP_set_Ignore(uint16_t value)
{
    return configure(OFP_MSG_SET_IGNORE, OFP_TLV_Ignore, OfpIgnore{.value = value});
}

OFP_API uint32_t OFP_set_TrapEnable(uint16_t instance_id, uint32_t traps)
{
    return configure(
        OFP_MSG_SET_TRAP_ENABLE, OFP_TLV_TrapEnable,
        OfpTrapEnable{.instance_id = instance_id, .traps = std::bit_cast<OfpUnaligned32>(traps)});
}

OFP_API uint32_t OFP_set_Ipv6Enhanced(uint16_t enable)
{
    return configure(OFP_MSG_SET_IPV6_ENHANCED, OFP_TLV_Ipv6Enhanced,
                     OfpIpv6Enhanced{.enable = enable});
}

OFP_API uint32_t OFP_set_EnableALAlFunction(const OfpEnableALAlFunction *functions)
{
    if (functions->functions == 0)
        return OFP_RC_OK;
    return configure(OFP_MSG_SET_ENABLE_ALAL_FUNCTION, OFP_TLV_EnableALAlFunction, *functions);
}

OFP_API uint32_t OFP_set_EnablePayloadFunction(const OfpEnablePayloadFunction *functions)
{
    if (functions->functions == 0)
        return OFP_RC_OK;
    return configure(OFP_MSG_SET_ENABLE_PAYLOAD_FUNCTION, OFP_TLV_EnablePayloadFunction,
                     *functions);
}

OFP_API uint32_t OFP_set_ProcALALPktOut(uint16_t value, const uint8_t *data, uint64_t length)
{
    OfpPacketOutAlAl packet{.value_u16_0 = value, .length = static_cast<uint16_t>(length)};
    std::copy_n(data, std::min<uint64_t>(length, sizeof packet.data), packet.data);
    return configure(OFP_MSG_PROC_ALAL_PKT_OUT, OFP_TLV_PacketOutAlAl, packet);
}

OFP_API uint32_t OFP_set_ProcConfigEvent(uint32_t event)
{
    if (!OFP_util_IsDaemonStart())
        return OFP_RC_OK; // it reads the configuration when it starts
    return configure(OFP_MSG_PROC_CONFIG_EVENT, OFP_TLV_ConfigEvent,
                     OfpConfigEvent{.event = event});
}

#include "config/configure.h"
#include "config/operation.h"
#include "ofp/config.h"
#include "ofp/message.h"
#include "ofp/platform.h"

using ofp::configure;
using ofp::operation_set;

OFP_API uint32_t OFP_set_Instance(uint16_t operation, uint16_t instance_id, uint32_t ext)
{
    // Without the agent daemon there is no instance to remove, and none to start it for.
    if (operation == 0 && !OFP_util_IsDaemonStart())
        return OFP_RC_OK;
    return configure(operation == operation_set ? OFP_MSG_SET_INSTANCE : OFP_MSG_UNSET_INSTANCE,
                     OFP_TLV_InstFilterInstance,
                     OfpInstFilterInstance{.instance_id = instance_id, .ext = ext});
}

OFP_API uint32_t OFP_set_ActiveInst(uint16_t instance_id, uint16_t operation)
{
    return configure(operation == operation_set ? OFP_MSG_ACTIVATE_INST : OFP_MSG_DEACTIVATE_INST,
                     OFP_TLV_InstanceID, OfpInstanceID{.instance_id = instance_id});
}

OFP_API uint32_t OFP_set_Description(uint16_t instance_id, const char *text)
{
    OfpInstanceCfg instance{.instance_id = instance_id};
    strlcpy(instance.description, text != nullptr ? text : "", sizeof instance.description);
    return configure(OFP_MSG_SET_DESCRIPTION, OFP_TLV_InstanceCfg, instance);
}

OFP_API uint32_t OFP_set_DataPathID(const OfpDataPathID *datapath)
{
    return configure(OFP_MSG_SET_DATAPATH_ID, OFP_TLV_DataPathID, *datapath);
}

OFP_API uint32_t OFP_set_Precedence(uint16_t instance_id, uint16_t precedence)
{
    return configure(
        OFP_MSG_SET_PRECEDENCE, OFP_TLV_Precedence,
        OfpPrecedence{.instance_id = instance_id, .precedence = precedence, .present = 1});
}

OFP_API uint32_t OFP_set_DataPlaneMode(uint16_t instance_id, uint16_t mode)
{
    return configure(OFP_MSG_SET_DATA_PLANE_MODE, OFP_TLV_DataPlaneMode,
                     OfpDataPlaneMode{.instance_id = instance_id, .mode = mode});
}

OFP_API uint32_t OFP_set_TTPMode(uint16_t instance_id, uint16_t mode)
{
    return configure(OFP_MSG_SET_TTP_MODE, OFP_TLV_TTPMode,
                     OfpTTPMode{.instance_id = instance_id, .mode = mode});
}

OFP_API uint32_t OFP_set_SmartGroup(uint16_t instance_id, uint16_t enable)
{
    return configure(OFP_MSG_SET_SMART_GROUP, OFP_TLV_SmartGroup,
                     OfpSmartGroup{.enable = enable, .instance_id = instance_id});
}

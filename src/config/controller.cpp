#include "config/configure.h"
#include "config/operation.h"
#include "ofp/config.h"
#include "ofp/message.h"

using ofp::configure;
using ofp::notify;
using ofp::operation_set;

OFP_API uint32_t OFP_set_CtrlCfg(const OfpCtrlCfg *controller, uint16_t operation)
{
    return configure(operation == operation_set ? OFP_MSG_SET_CTRL_CFG : OFP_MSG_UNSET_CTRL_CFG,
                     OFP_TLV_CtrlCfg, *controller);
}

OFP_API uint32_t OFP_set_Ctrl_SSL(const OfpCtrlSSL *tls, uint16_t operation)
{
    return configure(operation == operation_set ? OFP_MSG_SET_CTRL_SSL : OFP_MSG_UNSET_CTRL_SSL,
                     OFP_TLV_CtrlSSL, *tls);
}

OFP_API uint32_t OFP_set_AuxCfg(const OfpAuxCfg *auxiliary, uint16_t operation)
{
    return configure(operation == operation_set ? OFP_MSG_SET_AUX_CFG : OFP_MSG_UNSET_AUX_CFG,
                     OFP_TLV_AuxCfg, *auxiliary);
}

OFP_API uint32_t OFP_set_OapServer(const OfpOapServer *server, uint16_t operation)
{
    return configure(operation == operation_set ? OFP_MSG_SET_OAP_SERVER : OFP_MSG_UNSET_OAP_SERVER,
                     OFP_TLV_OapServer, *server);
}

OFP_API uint32_t OFP_set_ResetCtrlStat(uint16_t instance_id, uint8_t controller_id)
{
    return notify(OFP_MSG_RESET_CTRL_STAT, OFP_TLV_CtrlID,
                  OfpCtrlID{.instance_id = instance_id, .controller_id = controller_id});
}

OFP_API uint32_t OFP_set_ExlucdeCtrlId(const OfpExcludeConnID *excluded)
{
    return configure(OFP_MSG_SET_EXCLUDE_CTRL_ID, OFP_TLV_ExcludeConnID, *excluded);
}

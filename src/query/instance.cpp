#include "ofp/message.h"
#include "ofp/query.h"
#include "query/exchange.h"

OFP_API uint16_t OFP_get_IsInstanceExist(uint16_t instance_id)
{
    OfpInstanceIsExist reply{};
    const uint32_t code = ofp::ask(OFP_MSG_GET_INSTANCE_EXIST, OFP_TLV_InstanceID,
                                   OfpInstanceID{.instance_id = instance_id})
                              .typed(OFP_MSG_INSTANCE_EXIST, OFP_TLV_InstanceIsExist, reply);
    return code == 0 ? reply.exists : 0;
}

OFP_API uint32_t OFP_get_NextInstance(uint16_t instance_id, OfpInstanceID *next)
{
    // Callers rely on the code of the answer, which takes the place of the send's.
    return ofp::ask(OFP_MSG_GET_NEXT_INSTANCE, OFP_TLV_InstanceID,
                    OfpInstanceID{.instance_id = instance_id})
        .sent_or_not()
        .typed(OFP_MSG_NEXT_INSTANCE, OFP_TLV_InstanceID, *next);
}

OFP_API uint32_t OFP_get_InstActive(uint16_t instance_id, uint32_t *active)
{
    ofp::Exchange query = ofp::ask(OFP_MSG_GET_INST_ACTIVE, OFP_TLV_InstanceID,
                                   OfpInstanceID{.instance_id = instance_id});
    if (query.opened())
        *active = 0;
    return query.typed(OFP_MSG_INST_ACTIVE, OFP_TLV_InstActive, *active);
}

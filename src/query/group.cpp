#include "ofp/message.h"
#include "ofp/query.h"
#include "ofp/result.h"
#include "query/exchange.h"

OFP_API uint32_t OFP_get_GroupTable(uint16_t instance_id, OfpGroupTable *table)
{
    return ofp::ask(OFP_MSG_GET_GROUP_TABLE, OFP_TLV_GroupTableReq,
                    OfpGroupTableReq{.instance_id = instance_id})
        .typed(OFP_MSG_GROUP_TABLE, OFP_TLV_GroupTable, *table);
}

OFP_API uint32_t OFP_get_NextGroupID(uint16_t instance_id, uint32_t group_id, uint32_t *next)
{
    const OfpGroupID key{.group_id = group_id, .instance_id = instance_id};
    ofp::Reply reply;
    const uint32_t code = ofp::ask(OFP_MSG_GET_NEXT_GROUP_ID, OFP_TLV_GroupID, key).receive(&reply);
    if (code != 0)
        return code;
    // Without an id the caller would ask for the same one again: no reply passes as success.
    OfpGroupID group{};
    if (reply.code() != OFP_MSG_NEXT_GROUP_ID || !reply.first(OFP_TLV_GroupID, &group))
        return OFP_RC_FAILED;
    *next = group.group_id;
    return OFP_RC_OK;
}

OFP_API uint32_t OFP_get_NextSmartGroupID(OfpSmartGroupID *group)
{
    OfpGroupID reply{};
    const uint32_t code = ofp::ask(OFP_MSG_GET_NEXT_SMART_GROUP_ID, OFP_TLV_SmartGroupID, *group)
                              .typed(OFP_MSG_NEXT_GROUP_ID, OFP_TLV_GroupID, reply);
    if (code == 0)
        group->group_id = reply.group_id;
    return code;
}

OFP_API uint32_t OFP_get_GroupSummary(uint16_t instance_id, uint32_t group_id, uint64_t size,
                                      uint8_t *buffer, uint64_t *length)
{
    const OfpGroupID key{.group_id = group_id, .instance_id = instance_id};
    return ofp::ask(OFP_MSG_GET_GROUP_SUMMARY, OFP_TLV_GroupID, key).raw(size, buffer, length);
}

#include "ofp/message.h"
#include "ofp/query.h"
#include "ofp/result.h"
#include "query/exchange.h"
#include "query/list.h"

namespace ofp {
namespace {

// Appends the entries of a reply. False when memory is short.
bool append_resources(const Reply &reply, OfpLink *list)
{
    for (const Tlv &tlv : tlvs(reply.body())) {
        if (tlv.type != OFP_TLV_RepResourcesIF)
            continue;
        const auto resources = value_of<OfpRepResourcesIF>(tlv);
        if (resources.if_index == 0)
            break;
        auto element = append<OfpResourceElement>(list);
        if (!element)
            return false;
        element->resources = resources;
    }
    return true;
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_get_AclResv(OfpShowAclResv *reserved)
{
    ofp::Reply reply;
    const uint32_t code = ofp::ask(OFP_MSG_GET_ACL_RESV).receive(&reply);
    if (code != 0)
        return code;
    return reply.first(OFP_TLV_ShowAclResv, reserved) ? OFP_RC_OK : OFP_RC_FAILED;
}

OFP_API uint32_t OFP_get_AclTableNum(uint32_t *count)
{
    *count = 1; // every switch has one, whoever can be asked
    ofp::Reply reply;
    const uint32_t code = ofp::ask(OFP_MSG_GET_ACL_TABLE_NUM).receive(&reply);
    if (code != 0)
        return code;
    OfpGetAclTableNum tables{};
    if (!reply.first(OFP_TLV_GetAclTableNum, &tables))
        return OFP_RC_FAILED;
    *count = tables.count;
    return OFP_RC_OK;
}

OFP_API uint32_t OFP_get_ResourcesIf(uint32_t if_index, uint16_t value, OfpLink *list)
{
    const OfpReqResourcesIF key{.if_index = if_index, .value_u16_4 = value};
    ofp::Reply reply;
    const uint32_t code =
        ofp::ask(OFP_MSG_GET_RESOURCES_IF, OFP_TLV_ReqResourcesIF, key).receive(&reply);
    if (code != 0)
        return code;
    if (!ofp::append_resources(reply, list))
        ofp::free_elements(list);
    return ofp::is_empty(*list) ? OFP_RC_FAILED : OFP_RC_OK;
}

#include "ofp/message.h"
#include "ofp/query.h"
#include "ofp/result.h"
#include "query/exchange.h"
#include "query/list.h"
#include "query/progress.h"

namespace ofp {
namespace {

constexpr uint8_t no_table = 255;
static_assert(no_table == OFP_REF_RULE_END);

// The references of one reply: where they ended, and how many they were.
struct References {
    uint8_t last_table = no_table;
    uint32_t last_rule = 0;
    uint32_t count = 0;
};

uint32_t rule_of(const OfpLink *link)
{
    return reinterpret_cast<const OfpRuleRefElement *>(link)->rule_id;
}

// Where a rule goes: before the first greater one. Rules arrive in order as a rule, so the tail is
// looked at first.
OfpLink *place_of(uint32_t rule_id, OfpLink *list)
{
    if (is_empty(*list) || rule_of(list->previous) <= rule_id)
        return list;
    OfpLink *at = list->next;
    while (rule_of(at) <= rule_id)
        at = at->next;
    return at;
}

uint32_t insert_reference(const OfpRefRuleID &reference, OfpLink *list)
{
    auto element = make_element<OfpRuleRefElement>();
    if (!element)
        return OFP_RC_NO_RESOURCE;
    element->rule_id = reference.rule_id;
    element->table_id = reference.table_id;
    insert_before(place_of(reference.rule_id, list), &element->link);
    return OFP_RC_OK;
}

// Writes *read only when the reply was read to its end.
uint32_t take_references(Bytes datagram, OfpLink *array, References *read)
{
    References references;
    for (const Tlv &tlv : tlvs(datagram)) {
        if (tlv.type != OFP_TLV_RefRuleID)
            continue;
        const auto reference = value_of<OfpRefRuleID>(tlv);
        if (reference.table_id == no_table)
            return OFP_RC_FAILED;
        const uint32_t code = insert_reference(reference, &array[reference.table_id]);
        if (code != 0)
            return code;
        references = {reference.table_id, reference.rule_id, references.count + 1};
    }
    *read = references;
    return OFP_RC_OK;
}

// Asks again and again from the last reference of the reply before. The references of the reply
// that ends it are in the lists but not in the total.
template <typename Request>
uint32_t read_references(uint32_t code, uint32_t type, Request request, OfpLink *array,
                         uint32_t *total)
{
    *total = 0;
    request.table_id = no_table;
    const auto key = [&request] { return uint64_t{request.table_id} << 32 | request.rule_id; };
    Course course(key());
    for (References read;; *total += read.count) {
        Reply reply;
        uint32_t result = ask(code, type, request).receive(&reply);
        if (result != 0 || reply.length == 0)
            return result;
        result = take_references(reply.datagram(), array, &read);
        if (result != 0)
            return result;
        if (read.last_table == no_table)
            return OFP_REF_RULE_END;
        if (read.last_rule == 0)
            return OFP_RC_OK;
        request.table_id = read.last_table;
        request.rule_id = read.last_rule;
        if (!course.leads_on(key()))
            return OFP_RC_FAILED;
    }
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_get_GroupRefRule(uint16_t instance_id, uint32_t group_id, OfpLink *array,
                                      uint32_t *total)
{
    const OfpGroupRefReq request{.group_id = group_id, .instance_id = instance_id};
    return ofp::read_references(OFP_MSG_GET_GROUP_REF_RULE, OFP_TLV_GroupRefReq, request, array,
                                total);
}

OFP_API uint32_t OFP_get_MeterRefRule(uint16_t instance_id, uint32_t meter_id, OfpLink *array,
                                      uint32_t *total)
{
    const OfpMeterRefReq request{.meter_id = meter_id, .instance_id = instance_id};
    return ofp::read_references(OFP_MSG_GET_METER_REF_RULE, OFP_TLV_MeterRefReq, request, array,
                                total);
}

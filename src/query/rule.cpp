#include "flow/oxm_size.h"
#include "ofp/flow.h"
#include "ofp/message.h"
#include "ofp/query.h"
#include "ofp/result.h"
#include "query/exchange.h"
#include "util/block.h"

namespace ofp {
namespace {

constexpr uint32_t miss_rule = 0;
constexpr uint64_t match_overrun = 8; // the match encoder may touch a few bytes behind its match

OfpRuleIDInfo rule_key(uint16_t instance_id, uint8_t table_id, uint32_t rule_id)
{
    return {.rule_id = rule_id, .instance_id = instance_id, .table_id = table_id};
}

// Takes the next rule id into *next; 0 after a failed exchange.
uint32_t take_rule_id(Exchange &query, uint32_t reply, uint32_t *next)
{
    OfpRuleID rule{};
    const uint32_t code = query.typed(reply, OFP_TLV_RuleID, rule);
    if (query.opened())
        *next = rule.rule_id;
    return code;
}

// Sends the rule key and, behind it, the match.
void send_match(Exchange &query, const OfpRuleIDInfo &key, const OfpFRMatch &match)
{
    if (!query.ok())
        return;
    const auto buffer = Block<uint8_t>::zeroed(OFP_LARGE_DATAGRAM_SIZE);
    if (!buffer)
        return query.fail(OFP_RC_NO_RESOURCE);
    Writer request(buffer.get(), OFP_LARGE_DATAGRAM_SIZE);
    request.head(OFP_MSG_GET_NEXT_RULE_ID_BY_MATCH).tlv(OFP_TLV_RuleIDInfo, key);
    if (match_size(match) + match_overrun > OFP_LARGE_DATAGRAM_SIZE - request.bytes().size)
        return query.fail(OFP_RC_FAILED);
    request.with(
        [&](uint64_t room, uint8_t *out) { return OFP_encodeoxm_Fill(&match, room, out); });
    query.send(request.bytes());
}

} // namespace
} // namespace ofp

OFP_API uint32_t OFP_get_RuleInfo(uint16_t instance_id, uint8_t table_id, uint32_t rule_id,
                                  uint8_t *buffer, uint64_t *length)
{
    return ofp::ask(OFP_MSG_GET_RULE_INFO, OFP_TLV_RuleIDInfo,
                    ofp::rule_key(instance_id, table_id, rule_id))
        .raw(OFP_LARGE_DATAGRAM_SIZE, buffer, length);
}

OFP_API uint32_t OFP_get_MissRuleInfo(uint16_t instance_id, uint8_t table_id, uint8_t *buffer,
                                      uint64_t *length)
{
    return ofp::ask(OFP_MSG_GET_MISS_RULE_INFO, OFP_TLV_RuleIDInfo,
                    ofp::rule_key(instance_id, table_id, ofp::miss_rule))
        .raw(OFP_DATAGRAM_SIZE, buffer, length);
}

OFP_API uint32_t OFP_get_RuleStats(uint16_t instance_id, uint8_t table_id, uint32_t rule_id,
                                   OfpFRStatsInfo *stats)
{
    return ofp::ask(OFP_MSG_GET_RULE_STATS, OFP_TLV_RuleIDInfo,
                    ofp::rule_key(instance_id, table_id, rule_id))
        .typed(OFP_MSG_RULE_STATS, OFP_TLV_FRStatsInfo, *stats);
}

OFP_API uint32_t OFP_get_MissRuleStats(uint16_t instance_id, uint8_t table_id,
                                       OfpFRStatsInfo *stats)
{
    *stats = {};
    return ofp::ask(OFP_MSG_GET_MISS_RULE_STATS, OFP_TLV_RuleIDInfo,
                    ofp::rule_key(instance_id, table_id, ofp::miss_rule))
        .typed(OFP_MSG_MISS_RULE_STATS, OFP_TLV_FRStatsInfo, *stats);
}

OFP_API uint32_t OFP_get_NextRuleID(uint16_t instance_id, uint8_t table_id, uint32_t rule_id,
                                    uint32_t *next)
{
    ofp::Exchange query = ofp::ask(OFP_MSG_GET_NEXT_RULE_ID, OFP_TLV_RuleIDInfo,
                                   ofp::rule_key(instance_id, table_id, rule_id));
    return ofp::take_rule_id(query, OFP_MSG_NEXT_RULE_ID, next);
}

OFP_API uint32_t OFP_get_NextNoEffectiveRuleID(uint16_t instance_id, uint8_t table_id,
                                               uint32_t rule_id, uint32_t *next)
{
    ofp::Exchange query = ofp::ask(OFP_MSG_GET_NEXT_NO_EFFECTIVE_RULE_ID, OFP_TLV_RuleIDInfo,
                                   ofp::rule_key(instance_id, table_id, rule_id));
    return ofp::take_rule_id(query, OFP_MSG_GET_NEXT_NO_EFFECTIVE_RULE_ID, next);
}

OFP_API uint32_t OFP_get_NextRuleIDByMatch(const OfpFlowItem *item, OfpRuleIDInfo *key)
{
    ofp::Exchange query;
    ofp::send_match(query, *key, item->match);
    return ofp::take_rule_id(query, OFP_MSG_NEXT_RULE_ID, &key->rule_id);
}

// Rules: iteration, statistics, and the rules themselves as OpenFlow messages.
#include "daemon/handler.h"
#include "daemon/openflow_rule.h"
#include "openflow/oxm.h"

namespace agent {

namespace {

uint32_t check_key(const OfpRuleIDInfo &key, const Model &model)
{
    if (!model.instance(key.instance_id)) {
        return NO_INSTANCE;
    }
    return model.table(key.instance_id, key.table_id) ? 0 : NO_TABLE;
}

uint32_t take_key(const Request &request, const Model &model, OfpRuleIDInfo &key)
{
    const uint32_t code = take_only(request, OFP_TLV_RuleIDInfo, key);
    return code ? code : check_key(key, model);
}

OfpFRStatsInfo statistics(const RuleView &rule)
{
    return {.packet_count = rule.counters.packets,
            .byte_count = rule.counters.bytes,
            .duration_sec = rule.age_seconds};
}

uint32_t answer_next(uint32_t next, uint32_t message, Reply &reply)
{
    if (next == 0) {
        return NO_NEXT;
    }
    reply.record(message, OFP_TLV_RuleID, OfpRuleID{.rule_id = next});
    return 0;
}

// A key, its statistics and, when there is one, the rule as it was programmed.
uint32_t answer_rule(uint32_t message, const OfpRuleIDInfo &key,
                     const std::optional<RuleView> &rule, Reply &reply)
{
    reply.begin(message);
    reply.add(OFP_TLV_RuleIDInfo, key);
    reply.add(OFP_TLV_FRStatsInfo, statistics(rule.value_or(RuleView{})));
    if (rule) {
        const size_t length = flow_mod_size(*rule);
        if (reply.size() + 4 + length > REPLY_MAX) {
            return REPLY_TOO_LONG;
        }
        write_flow_mod(key.table_id, *rule, reply.add_bytes(OFP_TLV_FlowEntry, length));
    }
    reply.end();
    return 0;
}

// The rule that matches every packet with the lowest priority, if one was programmed.
std::optional<RuleView> miss_rule(const OfpRuleIDInfo &key, const Model &model)
{
    constexpr uint8_t EVERY_PACKET[] = {0, openflow::OFPMT_OXM, 0, 4, 0, 0, 0, 0};
    const Switch &rules = model.flow_switch();
    uint32_t id = 0;
    while ((id = rules.next_rule_matching(key.instance_id, key.table_id, id, EVERY_PACKET)) != 0) {
        auto rule = rules.rule(key.instance_id, key.table_id, id);
        if (rule && rule->priority == 0) {
            return rule;
        }
    }
    return std::nullopt;
}

} // namespace

uint32_t next_rule(const Request &request, Reply &reply, Model &model)
{
    OfpRuleIDInfo key;
    if (const uint32_t code = take_key(request, model, key)) {
        return code;
    }
    const uint32_t next = model.flow_switch().next_rule(key.instance_id, key.table_id, key.rule_id);
    return answer_next(next, OFP_MSG_NEXT_RULE_ID, reply);
}

uint32_t next_rule_not_in_effect(const Request &request, Reply &, Model &model)
{
    OfpRuleIDInfo key;
    const uint32_t code = take_key(request, model, key);
    return code ? code : NO_NEXT; // a rule that this switch took is in effect
}

uint32_t next_rule_by_match(const Request &request, Reply &reply, Model &model)
{
    Bytes rest = request.body;
    OfpRuleIDInfo key;
    if (const uint32_t code = take(rest, OFP_TLV_RuleIDInfo, key)) {
        return code;
    }
    // The match follows bare: it is the one value that has no TLV of its own.
    const auto match = openflow::parse_match(rest);
    if (!match || match->bytes.size() != rest.size() || openflow::check_match(*match)) {
        return BAD_MATCH;
    }
    if (const uint32_t code = check_key(key, model)) {
        return code;
    }
    const uint32_t next = model.flow_switch().next_rule_matching(key.instance_id, key.table_id,
                                                                 key.rule_id, match->bytes);
    return answer_next(next, OFP_MSG_NEXT_RULE_ID, reply);
}

uint32_t rule_stats(const Request &request, Reply &reply, Model &model)
{
    OfpRuleIDInfo key;
    if (const uint32_t code = take_key(request, model, key)) {
        return code;
    }
    const auto rule = model.flow_switch().rule(key.instance_id, key.table_id, key.rule_id);
    if (!rule) {
        return NO_RULE;
    }
    reply.record(OFP_MSG_RULE_STATS, OFP_TLV_FRStatsInfo, statistics(*rule));
    return 0;
}

uint32_t rule_info(const Request &request, Reply &reply, Model &model)
{
    OfpRuleIDInfo key;
    if (const uint32_t code = take_key(request, model, key)) {
        return code;
    }
    const auto rule = model.flow_switch().rule(key.instance_id, key.table_id, key.rule_id);
    return rule ? answer_rule(OFP_MSG_RULE_INFO, key, rule, reply) : NO_RULE;
}

uint32_t miss_rule_stats(const Request &request, Reply &reply, Model &model)
{
    OfpRuleIDInfo key;
    if (const uint32_t code = take_key(request, model, key)) {
        return code;
    }
    reply.record(OFP_MSG_MISS_RULE_STATS, OFP_TLV_FRStatsInfo,
                 statistics(miss_rule(key, model).value_or(RuleView{})));
    return 0;
}

uint32_t miss_rule_info(const Request &request, Reply &reply, Model &model)
{
    OfpRuleIDInfo key;
    if (const uint32_t code = take_key(request, model, key)) {
        return code;
    }
    const auto rule = miss_rule(key, model);
    key.rule_id = rule ? rule->id : 0;
    return answer_rule(OFP_MSG_MISS_RULE_INFO, key, rule, reply);
}

} // namespace agent

// Rules that refer to a group; meters, of which there are none.
#include "daemon/handler.h"
#include "daemon/page.h"
#include "daemon/reply_codes.h"

namespace agent {

namespace {

constexpr uint8_t BEFORE_FIRST_TABLE = 255;

// Adds references from behind the key's on, until all are there or the datagram is full.
void add_references(const OfpGroupRefReq &key, const Model &model, Reply &reply)
{
    const Switch &flow_switch = model.flow_switch();
    uint32_t rule = key.rule_id;
    auto table = key.table_id == BEFORE_FIRST_TABLE ? model.next_table(key.instance_id, -1)
                                                    : std::optional(key.table_id);
    for (; table; table = model.next_table(key.instance_id, *table)) {
        while (const uint32_t next =
                   flow_switch.next_rule_of_group(key.instance_id, *table, rule, key.group_id)) {
            if (!add_if_room(reply, OFP_TLV_RefRuleID,
                             OfpRefRuleID{.rule_id = next, .table_id = *table})) {
                return;
            }
            rule = next;
        }
        rule = 0;
    }
}

} // namespace

// A reply without references ends the query, so that the last one is always empty.
uint32_t group_references(const Request &request, Reply &reply, Model &model)
{
    OfpGroupRefReq key;
    if (const uint32_t code = take_only(request, OFP_TLV_GroupRefReq, key)) {
        return code;
    }
    if (!model.instance(key.instance_id)) {
        return NO_INSTANCE;
    }
    const auto group = model.flow_switch().group(key.instance_id, key.group_id);
    if (!group) {
        return NO_GROUP;
    }
    reply.begin(REPLY_GROUP_REF_RULE);
    if (group->references != 0) {
        add_references(key, model, reply);
    }
    reply.end();
    return 0;
}

// ---- Meters: nothing on the wire makes one

namespace {

uint32_t no_meter(const Request &request, const Model &model, uint32_t otherwise)
{
    OfpMeterReq key;
    if (const uint32_t code = take_only(request, OFP_TLV_MeterReq, key)) {
        return code;
    }
    return model.instance(key.instance_id) ? otherwise : NO_INSTANCE;
}

} // namespace

uint32_t meter_table(const Request &request, Reply &reply, Model &model)
{
    OfpInstanceID key;
    if (const uint32_t code = take_only(request, OFP_TLV_InstanceID, key)) {
        return code;
    }
    if (!model.instance(key.instance_id)) {
        return NO_INSTANCE;
    }
    reply.record(OFP_MSG_METER_TABLE, OFP_TLV_MeterTable,
                 OfpMeterTable{.meter_count = 0, .instance_id = key.instance_id});
    return 0;
}

uint32_t meter_entry(const Request &request, Reply &, Model &model)
{
    return no_meter(request, model, NO_METER);
}

uint32_t next_meter_entry(const Request &request, Reply &, Model &model)
{
    return no_meter(request, model, NO_NEXT);
}

uint32_t meter_references(const Request &request, Reply &, Model &model)
{
    OfpMeterRefReq key;
    if (const uint32_t code = take_only(request, OFP_TLV_MeterRefReq, key)) {
        return code;
    }
    return model.instance(key.instance_id) ? NO_METER : NO_INSTANCE;
}

// Smart groups are a function of hardware.
uint32_t next_smart_group(const Request &request, Reply &, Model &model)
{
    OfpSmartGroupID key;
    if (const uint32_t code = take_only(request, OFP_TLV_SmartGroupID, key)) {
        return code;
    }
    return model.instance(key.instance_id) ? NO_NEXT : NO_INSTANCE;
}

} // namespace agent

// Groups: how many, iteration, and the groups themselves as OpenFlow messages.
#include "daemon/handler.h"
#include "daemon/openflow_rule.h"
#include "daemon/reply_codes.h"
#include "openflow/message.h"

namespace agent {

namespace {

uint32_t take_group(const Request &request, const Model &model, OfpGroupID &key)
{
    if (const uint32_t code = take_only(request, OFP_TLV_GroupID, key)) {
        return code;
    }
    return model.instance(key.instance_id) ? 0 : NO_INSTANCE;
}

OfpGroupBase base_record(const OfpGroupID &key, const GroupView &group)
{
    OfpGroupBase base{};
    base.value_u64_0 = group.counters.packets;
    base.value_u64_8 = group.counters.bytes;
    base.value_u64_16 = group.age_seconds;
    base.value_u32_24 = key.group_id;
    base.value_u16_28 = key.instance_id;
    base.opaque_30[0] = group.type;
    base.value_u16_32 = static_cast<uint16_t>(group.bucket_count);
    base.value_u32_40 = group.references;
    return base;
}

// As many as there is room for; the group-mod before them has all.
void add_buckets(const GroupView &group, Reply &reply)
{
    openflow::BucketWalk walk(group.buckets);
    for (const Traffic &traffic : group.bucket_counters) {
        const auto bucket = walk.next();
        if (reply.size() + 4 + sizeof(OfpBucketBase) > REPLY_MAX) {
            return;
        }
        OfpBucketBase base{};
        base.packet_count = traffic.packets;
        base.byte_count = traffic.bytes;
        base.value_u32_16 = bucket->watch_port;
        base.value_u32_20 = bucket->watch_group;
        base.value_u32_24 = static_cast<uint32_t>(bucket->actions.size());
        base.value_u16_28 = bucket->weight;
        reply.add(OFP_TLV_BucketBase, base);
    }
}

} // namespace

uint32_t group_table(const Request &request, Reply &reply, Model &model)
{
    OfpGroupTableReq key;
    if (const uint32_t code = take_only(request, OFP_TLV_GroupTableReq, key)) {
        return code;
    }
    if (!model.instance(key.instance_id)) {
        return NO_INSTANCE;
    }
    reply.record(OFP_MSG_GROUP_TABLE, OFP_TLV_GroupTable,
                 OfpGroupTable{.group_count = model.flow_switch().group_count(key.instance_id),
                               .instance_id = key.instance_id});
    return 0;
}

uint32_t next_group(const Request &request, Reply &reply, Model &model)
{
    OfpGroupID key;
    if (const uint32_t code = take_group(request, model, key)) {
        return code;
    }
    // Group 0 is a group, so that iteration begins with the id that stands for none.
    const int64_t after = key.group_id == openflow::OFPG_ANY ? -1 : int64_t{key.group_id};
    const auto next = model.flow_switch().next_group(key.instance_id, after);
    if (!next) {
        return NO_NEXT;
    }
    reply.record(OFP_MSG_NEXT_GROUP_ID, OFP_TLV_GroupID,
                 OfpGroupID{.group_id = *next, .instance_id = key.instance_id});
    return 0;
}

uint32_t group_summary(const Request &request, Reply &reply, Model &model)
{
    OfpGroupID key;
    if (const uint32_t code = take_group(request, model, key)) {
        return code;
    }
    const auto group = model.flow_switch().group(key.instance_id, key.group_id);
    if (!group) {
        return NO_GROUP;
    }
    reply.begin(REPLY_GROUP_SUMMARY);
    reply.add(OFP_TLV_GroupID, key);
    reply.add(OFP_TLV_GroupBase, base_record(key, *group));
    const size_t length = group_mod_size(*group);
    if (reply.size() + 4 + length > REPLY_MAX) {
        return REPLY_TOO_LONG;
    }
    write_group_mod(*group, reply.add_bytes(OFP_TLV_FlowEntry, length));
    add_buckets(*group, reply);
    reply.end();
    return 0;
}

} // namespace agent

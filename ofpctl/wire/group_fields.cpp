// Groups and buckets.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(Group, group_id),
    OFPCTL_FIELD(Group, value_u32_4),
    OFPCTL_FIELD(Group, value_u32_8),
    OFPCTL_FIELD(Group, opaque_12),
    OFPCTL_FIELD(Group, value_u32_16),
    OFPCTL_FIELD(Group, value_u16_20),
    OFPCTL_FIELD(Group, opaque_22),
    OFPCTL_FIELD(Group, value_u16_40),
    OFPCTL_FIELD(Group, reserved_42),

    OFPCTL_FIELD(Bucket, opaque_0),
    OFPCTL_FIELD(Bucket, value_u32_16),
    OFPCTL_FIELD(Bucket, value_u32_20),
    OFPCTL_FIELD(Bucket, value_u32_24),
    OFPCTL_FIELD(Bucket, value_u32_28),

    OFPCTL_FIELD(GroupReply, group_id),
    OFPCTL_FIELD(GroupReply, value_u32_4),
    OFPCTL_FIELD(GroupReply, opaque_8),
    OFPCTL_FIELD(GroupReply, value_u16_12),
    OFPCTL_FIELD(GroupReply, opaque_14),
    OFPCTL_FIELD(GroupReply, value_u32_32),

    OFPCTL_FIELD(GroupTableReq, instance_id),
    OFPCTL_FIELD(GroupTableReq, reserved_2),

    OFPCTL_FIELD(GroupTable, group_count),
    OFPCTL_FIELD(GroupTable, instance_id),
    OFPCTL_FIELD(GroupTable, reserved_6),

    OFPCTL_FIELD(GroupID, group_id),
    OFPCTL_FIELD(GroupID, instance_id),
    OFPCTL_FIELD(GroupID, reserved_6),

    OFPCTL_FIELD(GroupBase, value_u64_0),
    OFPCTL_FIELD(GroupBase, value_u64_8),
    OFPCTL_FIELD(GroupBase, value_u64_16),
    OFPCTL_FIELD(GroupBase, value_u32_24),
    OFPCTL_FIELD(GroupBase, value_u16_28),
    OFPCTL_FIELD(GroupBase, opaque_30),
    OFPCTL_FIELD(GroupBase, value_u16_32),
    OFPCTL_FIELD(GroupBase, opaque_34),
    OFPCTL_FIELD(GroupBase, value_u32_40),
    OFPCTL_FIELD(GroupBase, value_u16_44),
    OFPCTL_FIELD(GroupBase, reserved_46),

    OFPCTL_FIELD(BucketBase, packet_count),
    OFPCTL_FIELD(BucketBase, byte_count),
    OFPCTL_FIELD(BucketBase, value_u32_16),
    OFPCTL_FIELD(BucketBase, value_u32_20),
    OFPCTL_FIELD(BucketBase, value_u32_24),
    OFPCTL_FIELD(BucketBase, value_u16_28),
    OFPCTL_FIELD(BucketBase, reserved_30),

    OFPCTL_FIELD(GroupRefReq, group_id),
    OFPCTL_FIELD(GroupRefReq, rule_id),
    OFPCTL_FIELD(GroupRefReq, instance_id),
    OFPCTL_FIELD(GroupRefReq, table_id),
    OFPCTL_FIELD(GroupRefReq, reserved_11),

    OFPCTL_FIELD(GroupReq, group_id),
    OFPCTL_FIELD(GroupReq, value_u32_4),
    OFPCTL_FIELD(GroupReq, instance_id),
    OFPCTL_FIELD(GroupReq, reserved_10),

    OFPCTL_FIELD(GroupStats, packet_count),
    OFPCTL_FIELD(GroupStats, byte_count),
    OFPCTL_FIELD(GroupStats, value_u32_16),
    OFPCTL_FIELD(GroupStats, value_u16_20),
    OFPCTL_FIELD(GroupStats, opaque_22),
    OFPCTL_FIELD(GroupStats, value_u16_24),
    OFPCTL_FIELD(GroupStats, reserved_26),

    OFPCTL_FIELD(BucketStats, packet_count),
    OFPCTL_FIELD(BucketStats, byte_count),
    OFPCTL_FIELD(BucketStats, value_u32_16),
    OFPCTL_FIELD(BucketStats, value_u32_20),
    OFPCTL_FIELD(BucketStats, value_u32_24),
    OFPCTL_FIELD(BucketStats, reserved_28),

    OFPCTL_FIELD(SmartGroup, enable),
    OFPCTL_FIELD(SmartGroup, instance_id),

    OFPCTL_FIELD(SmartGroupID, group_id),
    OFPCTL_FIELD(SmartGroupID, value_u32_4),
    OFPCTL_FIELD(SmartGroupID, value_u32_8),
    OFPCTL_FIELD(SmartGroupID, instance_id),
    OFPCTL_FIELD(SmartGroupID, reserved_14),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> group_fields = rows;

} // namespace ofpctl

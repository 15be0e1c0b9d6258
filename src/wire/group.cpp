#include "ofp/wire_group.h"

#include <cstddef>

#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpGroup, group_id) == 0);
static_assert(offsetof(OfpGroup, value_u32_4) == 4);
static_assert(offsetof(OfpGroup, value_u32_8) == 8);
static_assert(offsetof(OfpGroup, value_u32_16) == 16);
static_assert(offsetof(OfpGroup, value_u16_20) == 20);
static_assert(offsetof(OfpGroup, value_u16_40) == 40);
OFP_API void OFP_bswap_Group(void *value)
{
    swap_members<&OfpGroup::group_id, &OfpGroup::value_u32_4, &OfpGroup::value_u32_8,
                 &OfpGroup::value_u32_16, &OfpGroup::value_u16_20, &OfpGroup::value_u16_40>(value);
}

static_assert(offsetof(OfpBucket, value_u32_16) == 16);
static_assert(offsetof(OfpBucket, value_u32_20) == 20);
static_assert(offsetof(OfpBucket, value_u32_24) == 24);
static_assert(offsetof(OfpBucket, value_u32_28) == 28);
OFP_API void OFP_bswap_Bucket(void *value)
{
    swap_members<&OfpBucket::value_u32_16, &OfpBucket::value_u32_20, &OfpBucket::value_u32_24,
                 &OfpBucket::value_u32_28>(value);
}

static_assert(offsetof(OfpGroupReply, group_id) == 0);
static_assert(offsetof(OfpGroupReply, value_u32_4) == 4);
static_assert(offsetof(OfpGroupReply, value_u16_12) == 12);
static_assert(offsetof(OfpGroupReply, value_u32_32) == 32);
OFP_API void OFP_bswap_GroupReply(void *value)
{
    swap_members<&OfpGroupReply::group_id, &OfpGroupReply::value_u32_4,
                 &OfpGroupReply::value_u16_12, &OfpGroupReply::value_u32_32>(value);
}

static_assert(offsetof(OfpGroupTableReq, instance_id) == 0);
OFP_API void OFP_bswap_GroupTableReq(void *value)
{
    swap_members<&OfpGroupTableReq::instance_id>(value);
}

static_assert(offsetof(OfpGroupTable, group_count) == 0);
static_assert(offsetof(OfpGroupTable, instance_id) == 4);
OFP_API void OFP_bswap_GroupTable(void *value)
{
    swap_members<&OfpGroupTable::group_count, &OfpGroupTable::instance_id>(value);
}

static_assert(offsetof(OfpGroupID, group_id) == 0);
static_assert(offsetof(OfpGroupID, instance_id) == 4);
OFP_API void OFP_bswap_GroupID(void *value)
{
    swap_members<&OfpGroupID::group_id, &OfpGroupID::instance_id>(value);
}

static_assert(offsetof(OfpGroupBase, value_u64_0) == 0);
static_assert(offsetof(OfpGroupBase, value_u64_8) == 8);
static_assert(offsetof(OfpGroupBase, value_u64_16) == 16);
static_assert(offsetof(OfpGroupBase, value_u32_24) == 24);
static_assert(offsetof(OfpGroupBase, value_u16_28) == 28);
static_assert(offsetof(OfpGroupBase, value_u16_32) == 32);
static_assert(offsetof(OfpGroupBase, value_u32_40) == 40);
static_assert(offsetof(OfpGroupBase, value_u16_44) == 44);
OFP_API void OFP_bswap_GroupBase(void *value)
{
    swap_members<&OfpGroupBase::value_u64_0, &OfpGroupBase::value_u64_8,
                 &OfpGroupBase::value_u64_16, &OfpGroupBase::value_u32_24,
                 &OfpGroupBase::value_u16_28, &OfpGroupBase::value_u16_32,
                 &OfpGroupBase::value_u32_40, &OfpGroupBase::value_u16_44>(value);
}

static_assert(offsetof(OfpBucketBase, packet_count) == 0);
static_assert(offsetof(OfpBucketBase, byte_count) == 8);
static_assert(offsetof(OfpBucketBase, value_u32_16) == 16);
static_assert(offsetof(OfpBucketBase, value_u32_20) == 20);
static_assert(offsetof(OfpBucketBase, value_u32_24) == 24);
static_assert(offsetof(OfpBucketBase, value_u16_28) == 28);
OFP_API void OFP_bswap_BucketBase(void *value)
{
    swap_members<&OfpBucketBase::packet_count, &OfpBucketBase::byte_count,
                 &OfpBucketBase::value_u32_16, &OfpBucketBase::value_u32_20,
                 &OfpBucketBase::value_u32_24, &OfpBucketBase::value_u16_28>(value);
}

static_assert(offsetof(OfpGroupRefReq, group_id) == 0);
static_assert(offsetof(OfpGroupRefReq, rule_id) == 4);
static_assert(offsetof(OfpGroupRefReq, instance_id) == 8);
OFP_API void OFP_bswap_GroupRefReq(void *value)
{
    swap_members<&OfpGroupRefReq::group_id, &OfpGroupRefReq::rule_id, &OfpGroupRefReq::instance_id>(
        value);
}

static_assert(offsetof(OfpGroupReq, group_id) == 0);
static_assert(offsetof(OfpGroupReq, value_u32_4) == 4);
static_assert(offsetof(OfpGroupReq, instance_id) == 8);
OFP_API void OFP_bswap_GroupReq(void *value)
{
    swap_members<&OfpGroupReq::group_id, &OfpGroupReq::value_u32_4, &OfpGroupReq::instance_id>(
        value);
}

static_assert(offsetof(OfpGroupStats, packet_count) == 0);
static_assert(offsetof(OfpGroupStats, byte_count) == 8);
static_assert(offsetof(OfpGroupStats, value_u32_16) == 16);
static_assert(offsetof(OfpGroupStats, value_u16_20) == 20);
static_assert(offsetof(OfpGroupStats, value_u16_24) == 24);
OFP_API void OFP_bswap_GroupStats(void *value)
{
    swap_members<&OfpGroupStats::packet_count, &OfpGroupStats::byte_count,
                 &OfpGroupStats::value_u32_16, &OfpGroupStats::value_u16_20,
                 &OfpGroupStats::value_u16_24>(value);
}

static_assert(offsetof(OfpBucketStats, packet_count) == 0);
static_assert(offsetof(OfpBucketStats, byte_count) == 8);
static_assert(offsetof(OfpBucketStats, value_u32_16) == 16);
static_assert(offsetof(OfpBucketStats, value_u32_20) == 20);
static_assert(offsetof(OfpBucketStats, value_u32_24) == 24);
OFP_API void OFP_bswap_BucketStats(void *value)
{
    swap_members<&OfpBucketStats::packet_count, &OfpBucketStats::byte_count,
                 &OfpBucketStats::value_u32_16, &OfpBucketStats::value_u32_20,
                 &OfpBucketStats::value_u32_24>(value);
}

static_assert(offsetof(OfpSmartGroup, enable) == 0);
static_assert(offsetof(OfpSmartGroup, instance_id) == 2);
OFP_API void OFP_bswap_SmartGroup(void *value)
{
    swap_members<&OfpSmartGroup::enable, &OfpSmartGroup::instance_id>(value);
}

static_assert(offsetof(OfpSmartGroupID, group_id) == 0);
static_assert(offsetof(OfpSmartGroupID, value_u32_4) == 4);
static_assert(offsetof(OfpSmartGroupID, value_u32_8) == 8);
static_assert(offsetof(OfpSmartGroupID, instance_id) == 12);
OFP_API void OFP_bswap_SmartGroupID(void *value)
{
    swap_members<&OfpSmartGroupID::group_id, &OfpSmartGroupID::value_u32_4,
                 &OfpSmartGroupID::value_u32_8, &OfpSmartGroupID::instance_id>(value);
}

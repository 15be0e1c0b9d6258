// Resources, caches and queues of the device.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(LocalRule, opaque_0),
    OFPCTL_FIELD(LocalRule, value_u16_2),
    OFPCTL_FIELD(LocalRule, value_u32_4),
    OFPCTL_FIELD(LocalRule, value_u32_8),

    OFPCTL_FIELD(Reserved140, value_u16_0),
    OFPCTL_FIELD(Reserved140, reserved_2),

    OFPCTL_FIELD(QueueNum, count),

    OFPCTL_FIELD(Reserved144, value_u32_0),

    OFPCTL_FIELD(CacheInfo, value_u16_0),
    OFPCTL_FIELD(CacheInfo, value_u16_2),
    OFPCTL_FIELD(CacheInfo, value_u16_4),
    OFPCTL_FIELD(CacheInfo, reserved_6),

    OFPCTL_FIELD(CacheInfoRep, opaque_0),
    OFPCTL_FIELD(CacheInfoRep, value_u16_12),
    OFPCTL_FIELD(CacheInfoRep, value_u16_14),
    OFPCTL_FIELD(CacheInfoRep, value_u32_16),
    OFPCTL_FIELD(CacheInfoRep, opaque_20),
    OFPCTL_FIELD(CacheInfoRep, value_u32_24),
    OFPCTL_FIELD(CacheInfoRep, opaque_28),
    OFPCTL_FIELD(CacheInfoRep, value_u32_44),
    OFPCTL_FIELD(CacheInfoRep, opaque_48),
    OFPCTL_FIELD(CacheInfoRep, value_u16_60),
    OFPCTL_FIELD(CacheInfoRep, value_u16_62),
    OFPCTL_FIELD(CacheInfoRep, value_u16_64),
    OFPCTL_FIELD(CacheInfoRep, reserved_66),

    OFPCTL_FIELD(RefreshIpFlow, value),
    OFPCTL_FIELD(RefreshIpFlow, reserved_2),

    OFPCTL_FIELD(ResrvAclRes, value),
    OFPCTL_FIELD(ResrvAclRes, reserved_2),

    OFPCTL_FIELD(ShowAclResv, value_u16_0),
    OFPCTL_FIELD(ShowAclResv, value_u16_2),

    OFPCTL_FIELD(Reserved194, value_u32_0),
    OFPCTL_FIELD(Reserved194, value_u16_4),
    OFPCTL_FIELD(Reserved194, reserved_6),
    OFPCTL_FIELD(Reserved194, value_u32_8),

    OFPCTL_FIELD(GetAclTableNum, count),

    OFPCTL_FIELD(RepResourcesIF, if_index),
    OFPCTL_FIELD(RepResourcesIF, value_u32_4),
    OFPCTL_FIELD(RepResourcesIF, value_u16_8),
    OFPCTL_FIELD(RepResourcesIF, value_u16_10),
    OFPCTL_FIELD(RepResourcesIF, opaque_12),
    OFPCTL_FIELD(RepResourcesIF, value_u16_28),
    OFPCTL_FIELD(RepResourcesIF, value_u16_30),
    OFPCTL_FIELD(RepResourcesIF, opaque_32),

    OFPCTL_FIELD(ReqResourcesIF, if_index),
    OFPCTL_FIELD(ReqResourcesIF, value_u16_4),
    OFPCTL_FIELD(ReqResourcesIF, reserved_6),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> resource_fields = rows;

} // namespace ofpctl

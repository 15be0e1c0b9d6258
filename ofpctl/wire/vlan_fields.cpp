// VLANs and MAC addresses.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(DynMacAware, instance_id),   OFPCTL_FIELD(DynMacAware, enable),

    OFPCTL_FIELD(DMFilter, value_u16_0),      OFPCTL_FIELD(DMFilter, value_u16_2),

    OFPCTL_FIELD(DynMac, value_u32_0),        OFPCTL_FIELD(DynMac, value_u16_4),
    OFPCTL_FIELD(DynMac, reserved_6),

    OFPCTL_FIELD(MacIp, value_u16_0),         OFPCTL_FIELD(MacIp, opaque_2),
    OFPCTL_FIELD(MacIp, value_u32_40),        OFPCTL_FIELD(MacIp, value_u32_44),
    OFPCTL_FIELD(MacIp, value_u16_48),        OFPCTL_FIELD(MacIp, opaque_50),
    OFPCTL_FIELD(MacIp, value_u16_52),        OFPCTL_FIELD(MacIp, opaque_54),
    OFPCTL_FIELD(MacIp, value_u32_74),        OFPCTL_FIELD(MacIp, value_u32_78),
    OFPCTL_FIELD(MacIp, value_u16_82),        OFPCTL_FIELD(MacIp, value_u16_84),
    OFPCTL_FIELD(MacIp, opaque_86),           OFPCTL_FIELD(MacIp, value_u32_134),
    OFPCTL_FIELD(MacIp, value_u32_138),       OFPCTL_FIELD(MacIp, opaque_142),
    OFPCTL_FIELD(MacIp, value_u32_154),       OFPCTL_FIELD(MacIp, reserved_158),

    OFPCTL_FIELD(DisMacTbl, value_u32_0),     OFPCTL_FIELD(DisMacTbl, value_u16_4),
    OFPCTL_FIELD(DisMacTbl, value_u16_6),     OFPCTL_FIELD(DisMacTbl, value_u16_8),
    OFPCTL_FIELD(DisMacTbl, reserved_10),

    OFPCTL_FIELD(VlanLoosen, instance_id),    OFPCTL_FIELD(VlanLoosen, enable),

    OFPCTL_FIELD(DynMacNum, count),

    OFPCTL_FIELD(VlanBitmap, length),         OFPCTL_FIELD(VlanBitmap, map),

    OFPCTL_FIELD(MacLearning, instance_id),   OFPCTL_FIELD(MacLearning, enable),

    OFPCTL_FIELD(QinqNetWkcfg, enable),       OFPCTL_FIELD(QinqNetWkcfg, instance_id),

    OFPCTL_FIELD(NormalFwdVlan, value_u32_0), OFPCTL_FIELD(NormalFwdVlan, value_u32_4),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> vlan_fields = rows;

} // namespace ofpctl

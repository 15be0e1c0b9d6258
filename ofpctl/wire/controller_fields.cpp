// Controllers, auxiliary connections, OAP servers.
#include "wire/record_fields.h"

namespace ofpctl {

namespace {

constexpr FieldRow rows[] = {
    OFPCTL_FIELD(Ctrl, value_u64_0),
    OFPCTL_FIELD(Ctrl, value_u64_8),
    OFPCTL_FIELD(Ctrl, address_type),
    OFPCTL_FIELD(Ctrl, reserved_18),
    OFPCTL_FIELD(Ctrl, address),
    OFPCTL_FIELD(Ctrl, value_u32_36),
    OFPCTL_FIELD(Ctrl, state),
    OFPCTL_FIELD(Ctrl, value_u32_44),
    OFPCTL_FIELD(Ctrl, port),
    OFPCTL_FIELD(Ctrl, text_50),
    OFPCTL_FIELD(Ctrl, controller_id),
    OFPCTL_FIELD(Ctrl, opaque_83),
    OFPCTL_FIELD(Ctrl, value_u16_120),
    OFPCTL_FIELD(Ctrl, opaque_122),
    OFPCTL_FIELD(Ctrl, value_u16_140),
    OFPCTL_FIELD(Ctrl, value_u16_142),
    OFPCTL_FIELD(Ctrl, value_u32_144),
    OFPCTL_FIELD(Ctrl, opaque_148),
    OFPCTL_FIELD(Ctrl, text_152),
    OFPCTL_FIELD(Ctrl, event_value),
    OFPCTL_FIELD(Ctrl, reserved_186),

    OFPCTL_FIELD(CtrlCfg, instance_id),
    OFPCTL_FIELD(CtrlCfg, address_type),
    OFPCTL_FIELD(CtrlCfg, address),
    OFPCTL_FIELD(CtrlCfg, value_u32_20),
    OFPCTL_FIELD(CtrlCfg, port),
    OFPCTL_FIELD(CtrlCfg, value_u16_26),
    OFPCTL_FIELD(CtrlCfg, controller_id),
    OFPCTL_FIELD(CtrlCfg, text_29),
    OFPCTL_FIELD(CtrlCfg, text_61),
    OFPCTL_FIELD(CtrlCfg, opaque_93),
    OFPCTL_FIELD(CtrlCfg, value_u16_96),
    OFPCTL_FIELD(CtrlCfg, value_u16_98),
    OFPCTL_FIELD(CtrlCfg, opaque_100),
    OFPCTL_FIELD(CtrlCfg, value_u16_116),
    OFPCTL_FIELD(CtrlCfg, value_u16_118),
    OFPCTL_FIELD(CtrlCfg, opaque_120),

    OFPCTL_FIELD(CtrlInfo, value_u32_0),
    OFPCTL_FIELD(CtrlInfo, instance_id),
    OFPCTL_FIELD(CtrlInfo, reserved_6),

    OFPCTL_FIELD(VerbCtrlRep, address_type),
    OFPCTL_FIELD(VerbCtrlRep, value_u16_2),
    OFPCTL_FIELD(VerbCtrlRep, address),
    OFPCTL_FIELD(VerbCtrlRep, opaque_20),
    OFPCTL_FIELD(VerbCtrlRep, port),
    OFPCTL_FIELD(VerbCtrlRep, flag),
    OFPCTL_FIELD(VerbCtrlRep, controller_id),
    OFPCTL_FIELD(VerbCtrlRep, text_29),
    OFPCTL_FIELD(VerbCtrlRep, opaque_61),
    OFPCTL_FIELD(VerbCtrlRep, value_u16_68),
    OFPCTL_FIELD(VerbCtrlRep, value_u16_70),
    OFPCTL_FIELD(VerbCtrlRep, opaque_72),
    OFPCTL_FIELD(VerbCtrlRep, value_u16_88),
    OFPCTL_FIELD(VerbCtrlRep, opaque_90),

    OFPCTL_FIELD(CtrlID, instance_id),
    OFPCTL_FIELD(CtrlID, controller_id),
    OFPCTL_FIELD(CtrlID, reserved_3),

    OFPCTL_FIELD(OapServer, text_0),
    OFPCTL_FIELD(OapServer, value_u32_32),
    OFPCTL_FIELD(OapServer, value_u16_36),
    OFPCTL_FIELD(OapServer, value_u16_38),

    OFPCTL_FIELD(OapServerRun, text_0),
    OFPCTL_FIELD(OapServerRun, value_u32_32),
    OFPCTL_FIELD(OapServerRun, value_u32_36),
    OFPCTL_FIELD(OapServerRun, value_u16_40),
    OFPCTL_FIELD(OapServerRun, reserved_42),

    OFPCTL_FIELD(OapClientNum, count),

    OFPCTL_FIELD(AuxCfg, instance_id),
    OFPCTL_FIELD(AuxCfg, address_type),
    OFPCTL_FIELD(AuxCfg, address),
    OFPCTL_FIELD(AuxCfg, value_u32_20),
    OFPCTL_FIELD(AuxCfg, value_u32_24),
    OFPCTL_FIELD(AuxCfg, text_28),
    OFPCTL_FIELD(AuxCfg, port),
    OFPCTL_FIELD(AuxCfg, controller_id),
    OFPCTL_FIELD(AuxCfg, aux_id),

    OFPCTL_FIELD(AuxID, instance_id),
    OFPCTL_FIELD(AuxID, controller_id),
    OFPCTL_FIELD(AuxID, aux_id),

    OFPCTL_FIELD(Aux, value_u16_0),
    OFPCTL_FIELD(Aux, opaque_2),
    OFPCTL_FIELD(Aux, value_u64_20),
    OFPCTL_FIELD(Aux, value_u64_28),
    OFPCTL_FIELD(Aux, value_u32_36),
    OFPCTL_FIELD(Aux, value_u32_40),
    OFPCTL_FIELD(Aux, opaque_44),
    OFPCTL_FIELD(Aux, value_u16_76),
    OFPCTL_FIELD(Aux, reserved_78),

    OFPCTL_FIELD(ExcludeConnID, instance_id),
    OFPCTL_FIELD(ExcludeConnID, reserved_2),
    OFPCTL_FIELD(ExcludeConnID, value_u32_4),
    OFPCTL_FIELD(ExcludeConnID, value_u64_8),

    OFPCTL_FIELD(CtrlSSL, content),
};
static_assert(cover_records(rows));

} // namespace

const std::span<const FieldRow> controller_fields = rows;

} // namespace ofpctl

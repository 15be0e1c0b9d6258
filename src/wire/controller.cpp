#include "ofp/wire_controller.h"

#include <cstddef>

#include "wire/converters.h"
#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpCtrl, value_u64_0) == 0);
static_assert(offsetof(OfpCtrl, value_u64_8) == 8);
static_assert(offsetof(OfpCtrl, address_type) == 16);
static_assert(offsetof(OfpCtrl, value_u32_36) == 36);
static_assert(offsetof(OfpCtrl, state) == 40);
static_assert(offsetof(OfpCtrl, value_u32_44) == 44);
static_assert(offsetof(OfpCtrl, port) == 48);
static_assert(offsetof(OfpCtrl, value_u16_120) == 120);
static_assert(offsetof(OfpCtrl, value_u16_140) == 140);
static_assert(offsetof(OfpCtrl, value_u16_142) == 142);
static_assert(offsetof(OfpCtrl, value_u32_144) == 144);
static_assert(offsetof(OfpCtrl, event_value) == 184);
OFP_API void OFP_bswap_Ctrl(void *value)
{
    swap_members<&OfpCtrl::value_u64_0, &OfpCtrl::value_u64_8, &OfpCtrl::address_type,
                 &OfpCtrl::value_u32_36, &OfpCtrl::state, &OfpCtrl::value_u32_44, &OfpCtrl::port,
                 &OfpCtrl::value_u16_120, &OfpCtrl::value_u16_140, &OfpCtrl::value_u16_142,
                 &OfpCtrl::value_u32_144, &OfpCtrl::event_value>(value);
}

static_assert(offsetof(OfpCtrlCfg, instance_id) == 0);
static_assert(offsetof(OfpCtrlCfg, address_type) == 2);
static_assert(offsetof(OfpCtrlCfg, value_u32_20) == 20);
static_assert(offsetof(OfpCtrlCfg, port) == 24);
static_assert(offsetof(OfpCtrlCfg, value_u16_26) == 26);
static_assert(offsetof(OfpCtrlCfg, value_u16_96) == 96);
static_assert(offsetof(OfpCtrlCfg, value_u16_98) == 98);
static_assert(offsetof(OfpCtrlCfg, value_u16_116) == 116);
static_assert(offsetof(OfpCtrlCfg, value_u16_118) == 118);
OFP_API void OFP_bswap_CtrlCfg(void *value)
{
    swap_members<&OfpCtrlCfg::instance_id, &OfpCtrlCfg::address_type, &OfpCtrlCfg::value_u32_20,
                 &OfpCtrlCfg::port, &OfpCtrlCfg::value_u16_26, &OfpCtrlCfg::value_u16_96,
                 &OfpCtrlCfg::value_u16_98, &OfpCtrlCfg::value_u16_116, &OfpCtrlCfg::value_u16_118>(
        value);
}

static_assert(offsetof(OfpCtrlInfo, value_u32_0) == 0);
static_assert(offsetof(OfpCtrlInfo, instance_id) == 4);
OFP_API void OFP_bswap_CtrlInfo(void *value)
{
    swap_members<&OfpCtrlInfo::value_u32_0, &OfpCtrlInfo::instance_id>(value);
}

static_assert(offsetof(OfpVerbCtrlRep, address_type) == 0);
static_assert(offsetof(OfpVerbCtrlRep, value_u16_2) == 2);
static_assert(offsetof(OfpVerbCtrlRep, port) == 24);
static_assert(offsetof(OfpVerbCtrlRep, flag) == 26);
static_assert(offsetof(OfpVerbCtrlRep, value_u16_68) == 68);
static_assert(offsetof(OfpVerbCtrlRep, value_u16_70) == 70);
static_assert(offsetof(OfpVerbCtrlRep, value_u16_88) == 88);
OFP_API void OFP_bswap_VerbCtrlRep(void *value)
{
    swap_members<&OfpVerbCtrlRep::address_type, &OfpVerbCtrlRep::value_u16_2, &OfpVerbCtrlRep::port,
                 &OfpVerbCtrlRep::flag, &OfpVerbCtrlRep::value_u16_68,
                 &OfpVerbCtrlRep::value_u16_70, &OfpVerbCtrlRep::value_u16_88>(value);
}

static_assert(offsetof(OfpCtrlID, instance_id) == 0);
OFP_API void OFP_bswap_CtrlID(void *value) { swap_members<&OfpCtrlID::instance_id>(value); }

static_assert(offsetof(OfpAuxCfg, instance_id) == 0);
static_assert(offsetof(OfpAuxCfg, address_type) == 2);
static_assert(offsetof(OfpAuxCfg, value_u32_20) == 20);
static_assert(offsetof(OfpAuxCfg, value_u32_24) == 24);
static_assert(offsetof(OfpAuxCfg, port) == 60);
OFP_API void OFP_bswap_AuxCfg(void *value)
{
    swap_members<&OfpAuxCfg::instance_id, &OfpAuxCfg::address_type, &OfpAuxCfg::value_u32_20,
                 &OfpAuxCfg::value_u32_24, &OfpAuxCfg::port>(value);
}

static_assert(offsetof(OfpAuxID, instance_id) == 0);
OFP_API void OFP_bswap_AuxID(void *value) { swap_members<&OfpAuxID::instance_id>(value); }

static_assert(offsetof(OfpAux, value_u16_0) == 0);
static_assert(offsetof(OfpAux, value_u64_20) == 20);
static_assert(offsetof(OfpAux, value_u64_28) == 28);
static_assert(offsetof(OfpAux, value_u32_36) == 36);
static_assert(offsetof(OfpAux, value_u32_40) == 40);
static_assert(offsetof(OfpAux, value_u16_76) == 76);
OFP_API void OFP_bswap_Aux(void *value)
{
    swap_members<&OfpAux::value_u16_0, &OfpAux::value_u64_20, &OfpAux::value_u64_28,
                 &OfpAux::value_u32_36, &OfpAux::value_u32_40, &OfpAux::value_u16_76>(value);
}

static_assert(offsetof(OfpExcludeConnID, instance_id) == 0);
static_assert(offsetof(OfpExcludeConnID, value_u32_4) == 4);
static_assert(offsetof(OfpExcludeConnID, value_u64_8) == 8);
OFP_API void OFP_bswap_ExcludeConnID(void *value)
{
    swap_members<&OfpExcludeConnID::instance_id, &OfpExcludeConnID::value_u32_4,
                 &OfpExcludeConnID::value_u64_8>(value);
}

namespace ofp {

static_assert(offsetof(OfpOapServer, value_u32_32) == 32);
static_assert(offsetof(OfpOapServer, value_u16_36) == 36);
static_assert(offsetof(OfpOapServer, value_u16_38) == 38);
void bswap_OapServer(void *value)
{
    swap_members<&OfpOapServer::value_u32_32, &OfpOapServer::value_u16_36,
                 &OfpOapServer::value_u16_38>(value);
}

static_assert(offsetof(OfpOapServerRun, value_u32_32) == 32);
static_assert(offsetof(OfpOapServerRun, value_u32_36) == 36);
static_assert(offsetof(OfpOapServerRun, value_u16_40) == 40);
void bswap_OapServerRun(void *value)
{
    swap_members<&OfpOapServerRun::value_u32_32, &OfpOapServerRun::value_u32_36,
                 &OfpOapServerRun::value_u16_40>(value);
}

static_assert(offsetof(OfpOapClientNum, count) == 0);
void bswap_OapClientNum(void *value) { swap_members<&OfpOapClientNum::count>(value); }

} // namespace ofp

#include "ofp/wire_vlan.h"

#include <cstddef>

#include "ofp/platform.h"
#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpDynMacAware, instance_id) == 0);
static_assert(offsetof(OfpDynMacAware, enable) == 2);
OFP_API void OFP_bswap_DynMacAware(void *value)
{
    swap_members<&OfpDynMacAware::instance_id, &OfpDynMacAware::enable>(value);
}

static_assert(offsetof(OfpDMFilter, value_u16_0) == 0);
static_assert(offsetof(OfpDMFilter, value_u16_2) == 2);
OFP_API void OFP_bswap_DMFilter(void *value)
{
    swap_members<&OfpDMFilter::value_u16_0, &OfpDMFilter::value_u16_2>(value);
}

static_assert(offsetof(OfpDynMac, value_u32_0) == 0);
static_assert(offsetof(OfpDynMac, value_u16_4) == 4);
OFP_API void OFP_bswap_DynMac(void *value)
{
    swap_members<&OfpDynMac::value_u32_0, &OfpDynMac::value_u16_4>(value);
}

static_assert(offsetof(OfpMacIp, value_u16_0) == 0);
static_assert(offsetof(OfpMacIp, value_u32_40) == 40);
static_assert(offsetof(OfpMacIp, value_u32_44) == 44);
static_assert(offsetof(OfpMacIp, value_u16_48) == 48);
static_assert(offsetof(OfpMacIp, value_u16_52) == 52);
static_assert(offsetof(OfpMacIp, value_u32_74) == 74);
static_assert(offsetof(OfpMacIp, value_u32_78) == 78);
static_assert(offsetof(OfpMacIp, value_u16_82) == 82);
static_assert(offsetof(OfpMacIp, value_u16_84) == 84);
static_assert(offsetof(OfpMacIp, value_u32_134) == 134);
static_assert(offsetof(OfpMacIp, value_u32_138) == 138);
static_assert(offsetof(OfpMacIp, value_u32_154) == 154);
OFP_API void OFP_bswap_MacIp(void *value)
{
    swap_members<&OfpMacIp::value_u16_0, &OfpMacIp::value_u32_40, &OfpMacIp::value_u32_44,
                 &OfpMacIp::value_u16_48, &OfpMacIp::value_u16_52, &OfpMacIp::value_u32_74,
                 &OfpMacIp::value_u32_78, &OfpMacIp::value_u16_82, &OfpMacIp::value_u16_84,
                 &OfpMacIp::value_u32_134, &OfpMacIp::value_u32_138, &OfpMacIp::value_u32_154>(
        value);
}

static_assert(offsetof(OfpDisMacTbl, value_u32_0) == 0);
static_assert(offsetof(OfpDisMacTbl, value_u16_4) == 4);
static_assert(offsetof(OfpDisMacTbl, value_u16_6) == 6);
static_assert(offsetof(OfpDisMacTbl, value_u16_8) == 8);
OFP_API void OFP_bswap_DisMacTbl(void *value)
{
    swap_members<&OfpDisMacTbl::value_u32_0, &OfpDisMacTbl::value_u16_4, &OfpDisMacTbl::value_u16_6,
                 &OfpDisMacTbl::value_u16_8>(value);
}

static_assert(offsetof(OfpVlanLoosen, instance_id) == 0);
static_assert(offsetof(OfpVlanLoosen, enable) == 2);
OFP_API void OFP_bswap_VlanLoosen(void *value)
{
    swap_members<&OfpVlanLoosen::instance_id, &OfpVlanLoosen::enable>(value);
}

static_assert(offsetof(OfpDynMacNum, count) == 0);
OFP_API void OFP_bswap_DynMacNum(void *value) { swap_members<&OfpDynMacNum::count>(value); }

OFP_API void OFP_bswap_VlanBitmap(void *value) { Bitmap_H2N(static_cast<Bitmap *>(value)); }

static_assert(offsetof(OfpMacLearning, instance_id) == 0);
static_assert(offsetof(OfpMacLearning, enable) == 2);
OFP_API void OFP_bswap_MacLearning(void *value)
{
    swap_members<&OfpMacLearning::instance_id, &OfpMacLearning::enable>(value);
}

static_assert(offsetof(OfpQinqNetWkcfg, enable) == 0);
static_assert(offsetof(OfpQinqNetWkcfg, instance_id) == 2);
OFP_API void OFP_bswap_QinqNetWkcfg(void *value)
{
    swap_members<&OfpQinqNetWkcfg::enable, &OfpQinqNetWkcfg::instance_id>(value);
}

static_assert(offsetof(OfpNormalFwdVlan, value_u32_0) == 0);
static_assert(offsetof(OfpNormalFwdVlan, value_u32_4) == 4);
OFP_API void OFP_bswap_NormalFwdVlan(void *value)
{
    swap_members<&OfpNormalFwdVlan::value_u32_0, &OfpNormalFwdVlan::value_u32_4>(value);
}

static_assert(offsetof(OfpVlanMask, vlan_id) == 0);
static_assert(offsetof(OfpVlanMask, mask) == 2);
OFP_API void OFP_bswap_VlanMask(void *value)
{
    swap_members<&OfpVlanMask::vlan_id, &OfpVlanMask::mask>(value);
}

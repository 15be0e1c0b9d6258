#include "ofp/wire_experimenter.h"

#include <cstddef>

#include "wire/converters.h"
#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpExpMatchVsiID, vsi_id) == 0);
OFP_API void OFP_bswap_ExpMatchVsiID(void *value)
{
    swap_members<&OfpExpMatchVsiID::vsi_id>(value);
}

static_assert(offsetof(OfpExpMatchPort, type) == 0);
static_assert(offsetof(OfpExpMatchPort, length) == 4);
static_assert(offsetof(OfpExpMatchPort, low) == 8);
static_assert(offsetof(OfpExpMatchPort, high) == 10);
OFP_API void OFP_bswap_ExpMatchPort(void *value)
{
    swap_members<&OfpExpMatchPort::type, &OfpExpMatchPort::length, &OfpExpMatchPort::low,
                 &OfpExpMatchPort::high>(value);
}

static_assert(offsetof(OfpExpMatchServ, type) == 0);
static_assert(offsetof(OfpExpMatchServ, length) == 4);
static_assert(offsetof(OfpExpMatchServ, service) == 8);
OFP_API void OFP_bswap_ExpMatchServ(void *value)
{
    swap_members<&OfpExpMatchServ::type, &OfpExpMatchServ::length, &OfpExpMatchServ::service>(
        value);
}

static_assert(offsetof(OfpExpLIAct, value_u32_8) == 8);
static_assert(offsetof(OfpExpLIAct, value_u32_12) == 12);
static_assert(offsetof(OfpExpLIAct, value_u32_16) == 16);
static_assert(offsetof(OfpExpLIAct, value_u32_20) == 20);
OFP_API void OFP_bswap_ExpLIAct(void *value)
{
    OFP_bswap_ActionHdr(value);
    swap_members<&OfpExpLIAct::value_u32_8, &OfpExpLIAct::value_u32_12, &OfpExpLIAct::value_u32_16,
                 &OfpExpLIAct::value_u32_20>(value);
}

static_assert(offsetof(OfpExpServAct, value_u32_8) == 8);
static_assert(offsetof(OfpExpServAct, value_u32_12) == 12);
static_assert(offsetof(OfpExpServAct, value_u32_16) == 16);
OFP_API void OFP_bswap_ExpServAct(void *value)
{
    OFP_bswap_ActionHdr(value);
    swap_members<&OfpExpServAct::value_u32_8, &OfpExpServAct::value_u32_12,
                 &OfpExpServAct::value_u32_16>(value);
}

static_assert(offsetof(OfpExpMatchVpnIndex, type) == 0);
static_assert(offsetof(OfpExpMatchVpnIndex, length) == 4);
static_assert(offsetof(OfpExpMatchVpnIndex, vpn_index) == 8);
OFP_API void OFP_bswap_ExpMatchVpnIndex(void *value)
{
    swap_members<&OfpExpMatchVpnIndex::type, &OfpExpMatchVpnIndex::length,
                 &OfpExpMatchVpnIndex::vpn_index>(value);
}

static_assert(offsetof(OfpExpMatchInnerVlan, type) == 0);
static_assert(offsetof(OfpExpMatchInnerVlan, length) == 4);
static_assert(offsetof(OfpExpMatchInnerVlan, vlan_id) == 8);
OFP_API void OFP_bswap_ExpMatchInnerVlan(void *value)
{
    swap_members<&OfpExpMatchInnerVlan::type, &OfpExpMatchInnerVlan::length,
                 &OfpExpMatchInnerVlan::vlan_id>(value);
}

static_assert(offsetof(OfpExpMatchEgressPort, type) == 0);
static_assert(offsetof(OfpExpMatchEgressPort, length) == 4);
static_assert(offsetof(OfpExpMatchEgressPort, port) == 8);
OFP_API void OFP_bswap_ExpMatchEgressPort(void *value)
{
    swap_members<&OfpExpMatchEgressPort::type, &OfpExpMatchEgressPort::length,
                 &OfpExpMatchEgressPort::port>(value);
}

static_assert(offsetof(OfpExpMatchBssID, type) == 0);
static_assert(offsetof(OfpExpMatchBssID, length) == 4);
OFP_API void OFP_bswap_ExpMatchBssID(void *value)
{
    swap_members<&OfpExpMatchBssID::type, &OfpExpMatchBssID::length>(value);
}

static_assert(offsetof(OfpExpMatchEapol, type) == 0);
static_assert(offsetof(OfpExpMatchEapol, length) == 4);
OFP_API void OFP_bswap_ExpMatchEapol(void *value)
{
    swap_members<&OfpExpMatchEapol::type, &OfpExpMatchEapol::length>(value);
}

static_assert(offsetof(OfpExpNextHopAct, value_u32_8) == 8);
static_assert(offsetof(OfpExpNextHopAct, value_u32_12) == 12);
static_assert(offsetof(OfpExpNextHopAct, value_u32_20) == 20);
static_assert(offsetof(OfpExpNextHopAct, value_u16_36) == 36);
OFP_API void OFP_bswap_ExpNextHopAct(void *value)
{
    OFP_bswap_ActionHdr(value);
    swap_members<&OfpExpNextHopAct::value_u32_8, &OfpExpNextHopAct::value_u32_12,
                 &OfpExpNextHopAct::value_u32_20, &OfpExpNextHopAct::value_u16_36>(value);
}

static_assert(offsetof(OfpExpNextHopInvalidAct, value_u32_8) == 8);
static_assert(offsetof(OfpExpNextHopInvalidAct, value_u32_12) == 12);
static_assert(offsetof(OfpExpNextHopInvalidAct, value_u32_16) == 16);
OFP_API void OFP_bswap_ExpNextHopInvalidAct(void *value)
{
    OFP_bswap_ActionHdr(value);
    swap_members<&OfpExpNextHopInvalidAct::value_u32_8, &OfpExpNextHopInvalidAct::value_u32_12,
                 &OfpExpNextHopInvalidAct::value_u32_16>(value);
}

static_assert(offsetof(OfpExpPktOffset, type) == 0);
static_assert(offsetof(OfpExpPktOffset, length) == 4);
static_assert(offsetof(OfpExpPktOffset, value_u32_8) == 8);
static_assert(offsetof(OfpExpPktOffset, value_u32_12) == 12);
static_assert(offsetof(OfpExpPktOffset, value_u32_16) == 16);
static_assert(offsetof(OfpExpPktOffset, value_u32_20) == 20);
OFP_API void OFP_bswap_ExpPktOffset(void *value)
{
    swap_members<&OfpExpPktOffset::type, &OfpExpPktOffset::length, &OfpExpPktOffset::value_u32_8,
                 &OfpExpPktOffset::value_u32_12, &OfpExpPktOffset::value_u32_16,
                 &OfpExpPktOffset::value_u32_20>(value);
}

static_assert(offsetof(OfpExpPktExpOffset, type) == 0);
static_assert(offsetof(OfpExpPktExpOffset, length) == 4);
static_assert(offsetof(OfpExpPktExpOffset, value_u32_8) == 8);
static_assert(offsetof(OfpExpPktExpOffset, value_u32_12) == 12);
static_assert(offsetof(OfpExpPktExpOffset, value_u32_16) == 16);
OFP_API void OFP_bswap_ExpPktExpOffset(void *value)
{
    swap_members<&OfpExpPktExpOffset::type, &OfpExpPktExpOffset::length,
                 &OfpExpPktExpOffset::value_u32_8, &OfpExpPktExpOffset::value_u32_12,
                 &OfpExpPktExpOffset::value_u32_16>(value);
}

static_assert(offsetof(OfpExpMatchFlowFlag, type) == 0);
static_assert(offsetof(OfpExpMatchFlowFlag, length) == 4);
static_assert(offsetof(OfpExpMatchFlowFlag, flow_flag) == 8);
OFP_API void OFP_bswap_ExpMatchFlowFlag(void *value)
{
    swap_members<&OfpExpMatchFlowFlag::type, &OfpExpMatchFlowFlag::length,
                 &OfpExpMatchFlowFlag::flow_flag>(value);
}

static_assert(offsetof(OfpExpEmpty, value_u32_0) == 0);
OFP_API void OFP_bswap_ExpEmpty(void *value) { swap_members<&OfpExpEmpty::value_u32_0>(value); }

namespace ofp {

static_assert(offsetof(OfpReserved146, value_u16_0) == 0);
static_assert(offsetof(OfpReserved146, value_u16_2) == 2);
static_assert(offsetof(OfpReserved146, value_u32_4) == 4);
static_assert(offsetof(OfpReserved146, value_u16_24) == 24);
void bswap_Reserved146(void *value)
{
    swap_members<&OfpReserved146::value_u16_0, &OfpReserved146::value_u16_2,
                 &OfpReserved146::value_u32_4, &OfpReserved146::value_u16_24>(value);
}

} // namespace ofp

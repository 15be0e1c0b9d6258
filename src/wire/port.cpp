#include "ofp/wire_port.h"

#include <cstddef>

#include "wire/converters.h"
#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpIfIndex, if_index) == 0);
OFP_API void OFP_bswap_IfIndex(void *value) { swap_members<&OfpIfIndex::if_index>(value); }

static_assert(offsetof(OfpPortStats, rx_packets) == 0);
static_assert(offsetof(OfpPortStats, tx_packets) == 8);
static_assert(offsetof(OfpPortStats, rx_bytes) == 16);
static_assert(offsetof(OfpPortStats, tx_bytes) == 24);
static_assert(offsetof(OfpPortStats, rx_dropped) == 32);
static_assert(offsetof(OfpPortStats, tx_dropped) == 40);
static_assert(offsetof(OfpPortStats, rx_errors) == 48);
static_assert(offsetof(OfpPortStats, tx_errors) == 56);
static_assert(offsetof(OfpPortStats, rx_frame_errors) == 64);
static_assert(offsetof(OfpPortStats, rx_over_errors) == 72);
static_assert(offsetof(OfpPortStats, rx_crc_errors) == 80);
static_assert(offsetof(OfpPortStats, collisions) == 88);
static_assert(offsetof(OfpPortStats, duration_sec) == 96);
OFP_API void OFP_bswap_PortStats(void *value)
{
    swap_members<&OfpPortStats::rx_packets, &OfpPortStats::tx_packets, &OfpPortStats::rx_bytes,
                 &OfpPortStats::tx_bytes, &OfpPortStats::rx_dropped, &OfpPortStats::tx_dropped,
                 &OfpPortStats::rx_errors, &OfpPortStats::tx_errors, &OfpPortStats::rx_frame_errors,
                 &OfpPortStats::rx_over_errors, &OfpPortStats::rx_crc_errors,
                 &OfpPortStats::collisions, &OfpPortStats::duration_sec>(value);
}

static_assert(offsetof(OfpVerbIfRep, if_index) == 0);
OFP_API void OFP_bswap_VerbIfRep(void *value) { swap_members<&OfpVerbIfRep::if_index>(value); }

static_assert(offsetof(OfpVerbIfReq, if_index) == 0);
static_assert(offsetof(OfpVerbIfReq, instance_id) == 4);
OFP_API void OFP_bswap_VerbIfReq(void *value)
{
    swap_members<&OfpVerbIfReq::if_index, &OfpVerbIfReq::instance_id>(value);
}

static_assert(offsetof(OfpPortCfg, if_index) == 0);
static_assert(offsetof(OfpPortCfg, config) == 4);
OFP_API void OFP_bswap_PortCfg(void *value)
{
    swap_members<&OfpPortCfg::if_index, &OfpPortCfg::config>(value);
}

static_assert(offsetof(OfpPortCfgAdv, if_index) == 0);
static_assert(offsetof(OfpPortCfgAdv, advertise) == 4);
OFP_API void OFP_bswap_PortCfgAdv(void *value)
{
    swap_members<&OfpPortCfgAdv::if_index, &OfpPortCfgAdv::advertise>(value);
}

static_assert(offsetof(OfpPort, port) == 0);
OFP_API void OFP_bswap_Port(void *value) { swap_members<&OfpPort::port>(value); }

static_assert(offsetof(OfpPortNum, count) == 0);
OFP_API void OFP_bswap_PortNum(void *value) { swap_members<&OfpPortNum::count>(value); }

static_assert(offsetof(OfpBatchIf, count) == 0);
static_assert(offsetof(OfpBatchIf, if_index) == 4);
OFP_API void OFP_bswap_BatchIf(void *value)
{
    swap_members<&OfpBatchIf::count, &OfpBatchIf::if_index>(value);
}

static_assert(offsetof(OfpIfInfo, if_index) == 0);
static_assert(offsetof(OfpIfInfo, value_u32_4) == 4);
static_assert(offsetof(OfpIfInfo, value_u16_8) == 8);
static_assert(offsetof(OfpIfInfo, value_u16_10) == 10);
OFP_API void ofp_bswap_IfInfo(void *value)
{
    swap_members<&OfpIfInfo::if_index, &OfpIfInfo::value_u32_4, &OfpIfInfo::value_u16_8,
                 &OfpIfInfo::value_u16_10>(value);
}

static_assert(offsetof(OfpPortInstanceCfg, if_index) == 0);
static_assert(offsetof(OfpPortInstanceCfg, value_u32_4) == 4);
static_assert(offsetof(OfpPortInstanceCfg, instance_id) == 8);
OFP_API void OFP_bswap_PortInstanceCfg(void *value)
{
    swap_members<&OfpPortInstanceCfg::if_index, &OfpPortInstanceCfg::value_u32_4,
                 &OfpPortInstanceCfg::instance_id>(value);
}

static_assert(offsetof(OfpIfAggChg, value_u32_0) == 0);
static_assert(offsetof(OfpIfAggChg, value_u32_4) == 4);
static_assert(offsetof(OfpIfAggChg, value_u32_8) == 8);
OFP_API void OFP_bswap_IfAggChg(void *value)
{
    swap_members<&OfpIfAggChg::value_u32_0, &OfpIfAggChg::value_u32_4, &OfpIfAggChg::value_u32_8>(
        value);
}

static_assert(offsetof(OfpPortShutdown, if_index) == 0);
OFP_API void OFP_bswap_PortShutdown(void *value)
{
    swap_members<&OfpPortShutdown::if_index>(value);
}

namespace ofp {

void bswap_Reserved109(void *) {}

void bswap_Reserved110(void *) {}

static_assert(offsetof(OfpForbiddenPort, ports) == 0);
static_assert(offsetof(OfpForbiddenPort, instance_id) == 4);
void bswap_ForbiddenPort(void *value)
{
    swap_members<&OfpForbiddenPort::ports, &OfpForbiddenPort::instance_id>(value);
}

static_assert(offsetof(OfpReserved129, value_u32_0) == 0);
void bswap_Reserved129(void *value) { swap_members<&OfpReserved129::value_u32_0>(value); }

static_assert(offsetof(OfpPermitPortType, port_types) == 0);
static_assert(offsetof(OfpPermitPortType, instance_id) == 4);
void bswap_PermitPortType(void *value)
{
    swap_members<&OfpPermitPortType::port_types, &OfpPermitPortType::instance_id>(value);
}

} // namespace ofp

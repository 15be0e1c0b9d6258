#include "ofp/wire_connection.h"

#include <cstddef>

#include "wire/converters.h"
#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpEchoTime, interval) == 0);
static_assert(offsetof(OfpEchoTime, instance_id) == 4);
OFP_API void OFP_bswap_EchoTime(void *value)
{
    swap_members<&OfpEchoTime::interval, &OfpEchoTime::instance_id>(value);
}

static_assert(offsetof(OfpFailOpen, mode) == 0);
static_assert(offsetof(OfpFailOpen, instance_id) == 4);
OFP_API void OFP_bswap_FailOpen(void *value)
{
    swap_members<&OfpFailOpen::mode, &OfpFailOpen::instance_id>(value);
}

static_assert(offsetof(OfpFailOpenInfo, mode) == 0);
static_assert(offsetof(OfpFailOpenInfo, instance_id) == 4);
OFP_API void OFP_bswap_FailOpenInfo(void *value)
{
    swap_members<&OfpFailOpenInfo::mode, &OfpFailOpenInfo::instance_id>(value);
}

static_assert(offsetof(OfpReconnectTime, interval) == 0);
static_assert(offsetof(OfpReconnectTime, instance_id) == 4);
OFP_API void OFP_bswap_ReconnectTime(void *value)
{
    swap_members<&OfpReconnectTime::interval, &OfpReconnectTime::instance_id>(value);
}

static_assert(offsetof(OfpConnMode, mode) == 0);
static_assert(offsetof(OfpConnMode, instance_id) == 4);
OFP_API void OFP_bswap_ConnMode(void *value)
{
    swap_members<&OfpConnMode::mode, &OfpConnMode::instance_id>(value);
}

static_assert(offsetof(OfpPktinWithEgress, value_u32_0) == 0);
static_assert(offsetof(OfpPktinWithEgress, value_u16_4) == 4);
static_assert(offsetof(OfpPktinWithEgress, value_u32_8) == 8);
OFP_API void OFP_bswap_PktinWithEgress(void *value)
{
    swap_members<&OfpPktinWithEgress::value_u32_0, &OfpPktinWithEgress::value_u16_4,
                 &OfpPktinWithEgress::value_u32_8>(value);
}

static_assert(offsetof(OfpLoopProtection, instance_id) == 0);
static_assert(offsetof(OfpLoopProtection, enable) == 2);
OFP_API void OFP_bswap_LoopProtection(void *value)
{
    swap_members<&OfpLoopProtection::instance_id, &OfpLoopProtection::enable>(value);
}

static_assert(offsetof(OfpIgnore, value) == 0);
OFP_API void OFP_bswap_Ignore(void *value) { swap_members<&OfpIgnore::value>(value); }

static_assert(offsetof(OfpTrapEnable, instance_id) == 0);
static_assert(offsetof(OfpTrapEnable, traps) == 2);
OFP_API void OFP_bswap_TrapEnable(void *value)
{
    swap_members<&OfpTrapEnable::instance_id, &OfpTrapEnable::traps>(value);
}

static_assert(offsetof(OfpCapSupportEVPN, supported) == 0);
OFP_API void OFP_bswap_CapSupportEVPN(void *value)
{
    swap_members<&OfpCapSupportEVPN::supported>(value);
}

namespace ofp {

static_assert(offsetof(OfpEnableALAlFunction, instance_id) == 0);
static_assert(offsetof(OfpEnableALAlFunction, value_u16_2) == 2);
static_assert(offsetof(OfpEnableALAlFunction, functions) == 4);
void bswap_EnableALAlFunction(void *value)
{
    swap_members<&OfpEnableALAlFunction::instance_id, &OfpEnableALAlFunction::value_u16_2,
                 &OfpEnableALAlFunction::functions>(value);
}

static_assert(offsetof(OfpEnablePayloadFunction, instance_id) == 0);
static_assert(offsetof(OfpEnablePayloadFunction, value_u16_2) == 2);
static_assert(offsetof(OfpEnablePayloadFunction, value_u32_4) == 4);
static_assert(offsetof(OfpEnablePayloadFunction, value_u32_8) == 8);
static_assert(offsetof(OfpEnablePayloadFunction, functions) == 12);
void bswap_EnablePayloadFunction(void *value)
{
    swap_members<&OfpEnablePayloadFunction::instance_id, &OfpEnablePayloadFunction::value_u16_2,
                 &OfpEnablePayloadFunction::value_u32_4, &OfpEnablePayloadFunction::value_u32_8,
                 &OfpEnablePayloadFunction::functions>(value);
}

} // namespace ofp

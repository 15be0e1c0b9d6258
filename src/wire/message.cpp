#include "ofp/wire_message.h"

#include <cstddef>

#include "wire/converters.h"
#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpMsgHead, code) == 0);
OFP_API void OFP_bswap_MsgHead(void *value) { swap_members<&OfpMsgHead::code>(value); }

static_assert(offsetof(OfpErrCode, code) == 0);
OFP_API void OFP_bswap_ErrCode(void *value) { swap_members<&OfpErrCode::code>(value); }

static_assert(offsetof(OfpPktContext, value_u32_4) == 4);
static_assert(offsetof(OfpPktContext, value_u32_72) == 72);
static_assert(offsetof(OfpPktContext, value_u32_208) == 208);
static_assert(offsetof(OfpPktContext, value_u16_212) == 212);
static_assert(offsetof(OfpPktContext, value_u32_220) == 220);
static_assert(offsetof(OfpPktContext, value_u32_1248) == 1248);
static_assert(offsetof(OfpPktContext, value_u32_1252) == 1252);
OFP_API void OFP_bswap_PktContext(void *value)
{
    swap_members<&OfpPktContext::value_u32_4, &OfpPktContext::value_u32_72,
                 &OfpPktContext::value_u32_208, &OfpPktContext::value_u16_212,
                 &OfpPktContext::value_u32_220, &OfpPktContext::value_u32_1248,
                 &OfpPktContext::value_u32_1252>(value);
}

static_assert(offsetof(OfpSlotID, slot_id) == 0);
OFP_API void OFP_bswap_SlotID(void *value) { swap_members<&OfpSlotID::slot_id>(value); }

static_assert(offsetof(OfpMultiPart, value_u16_0) == 0);
static_assert(offsetof(OfpMultiPart, value_u16_2) == 2);
OFP_API void OFP_bswap_MultiPart(void *value)
{
    swap_members<&OfpMultiPart::value_u16_0, &OfpMultiPart::value_u16_2>(value);
}

static_assert(offsetof(OfpFd, fd) == 0);
OFP_API void OFP_bswap_Fd(void *value) { swap_members<&OfpFd::fd>(value); }

static_assert(offsetof(OfpMsgFlag, last) == 0);
OFP_API void OFP_bswap_MsgFlag(void *value) { swap_members<&OfpMsgFlag::last>(value); }

static_assert(offsetof(OfpCookie, cookie) == 0);
OFP_API void ofp_bswap_Cookie(void *value) { swap_members<&OfpCookie::cookie>(value); }

static_assert(offsetof(OfpPacketOutAlAl, value_u16_0) == 0);
static_assert(offsetof(OfpPacketOutAlAl, length) == 2);
OFP_API void ofp_bswap_PacketOutAlAl(void *value)
{
    swap_members<&OfpPacketOutAlAl::value_u16_0, &OfpPacketOutAlAl::length>(value);
}

static_assert(offsetof(OfpSmoothEmpty, value_u32_0) == 0);
OFP_API void OFP_bswap_SmoothEmpty(void *value)
{
    swap_members<&OfpSmoothEmpty::value_u32_0>(value);
}

namespace ofp {

static_assert(offsetof(OfpReserved218, value_u32_0) == 0);
void bswap_Reserved218(void *value) { swap_members<&OfpReserved218::value_u32_0>(value); }

} // namespace ofp

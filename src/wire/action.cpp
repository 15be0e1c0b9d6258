#include "ofp/wire_action.h"

#include <cstddef>

#include "wire/swap_members.h"

using ofp::swap_members;

static_assert(offsetof(OfpActionHdr, type) == 0);
static_assert(offsetof(OfpActionHdr, size) == 4);
OFP_API void OFP_bswap_ActionHdr(void *value)
{
    swap_members<&OfpActionHdr::type, &OfpActionHdr::size>(value);
}

OFP_API void OFP_bswap_DropAct(void *value) { OFP_bswap_ActionHdr(value); }

static_assert(offsetof(OfpOutputAct, port_kind) == 8);
static_assert(offsetof(OfpOutputAct, port) == 12);
static_assert(offsetof(OfpOutputAct, max_length) == 16);
OFP_API void OFP_bswap_OutputAct(void *value)
{
    OFP_bswap_ActionHdr(value);
    swap_members<&OfpOutputAct::port_kind, &OfpOutputAct::port, &OfpOutputAct::max_length>(value);
}

static_assert(offsetof(OfpGroupAct, group_id) == 8);
OFP_API void OFP_bswap_GroupAct(void *value)
{
    OFP_bswap_ActionHdr(value);
    swap_members<&OfpGroupAct::group_id>(value);
}

static_assert(offsetof(OfpQueueAct, queue_id) == 8);
OFP_API void OFP_bswap_QueueAct(void *value)
{
    OFP_bswap_ActionHdr(value);
    swap_members<&OfpQueueAct::queue_id>(value);
}

static_assert(offsetof(OfpSetFieldAct, field) == 8);
static_assert(offsetof(OfpSetFieldAct, value_u64_280) == 280);
static_assert(offsetof(OfpSetFieldAct, value_u32_288) == 288);
OFP_API void OFP_bswap_SetFieldAct(void *value)
{
    OFP_bswap_ActionHdr(value);
    OFP_bswap_MatchField(static_cast<uint8_t *>(value) + sizeof(OfpActionHdr));
    swap_members<&OfpSetFieldAct::value_u64_280, &OfpSetFieldAct::value_u32_288>(value);
}

OFP_API void OFP_bswap_SetTTLAct(void *value) { OFP_bswap_ActionHdr(value); }

static_assert(offsetof(OfpTagOpAct, eth_type) == 8);
OFP_API void OFP_bswap_TagOpAct(void *value)
{
    OFP_bswap_ActionHdr(value);
    swap_members<&OfpTagOpAct::eth_type>(value);
}

static_assert(offsetof(OfpMeterAct, meter_id) == 8);
OFP_API void OFP_bswap_MeterAct(void *value)
{
    OFP_bswap_ActionHdr(value);
    swap_members<&OfpMeterAct::meter_id>(value);
}

static_assert(offsetof(OfpWriteMetaAct, metadata) == 8);
static_assert(offsetof(OfpWriteMetaAct, metadata_mask) == 16);
OFP_API void OFP_bswap_WriteMetaAct(void *value)
{
    OFP_bswap_ActionHdr(value);
    swap_members<&OfpWriteMetaAct::metadata, &OfpWriteMetaAct::metadata_mask>(value);
}

OFP_API void OFP_bswap_GotoTblAct(void *value) { OFP_bswap_ActionHdr(value); }

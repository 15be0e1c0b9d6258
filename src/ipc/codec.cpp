#include "ofp/codec.h"

#include <algorithm>
#include <cstring>

#include "ipc/tlv_range.h"
#include "ipc/writer.h"
#include "ofp/platform.h"
#include "ofp/result.h"

OFP_API uint64_t OFP_msg_SetTlvData(uint8_t *buffer, uint64_t space, uint32_t type, uint64_t length,
                                    const void *value)
{
    // The copy is converted, not the caller's value; a conversion may reach past a short value.
    alignas(8) uint8_t converted[OFP_DATAGRAM_SIZE];
    if (length > sizeof converted)
        return 0;
    if (length != 0)
        std::memcpy(converted, value, length);
    OFP_bswap_ByteSwap(type, converted);
    return STLV_Set(buffer, static_cast<uint32_t>(std::min<uint64_t>(space, UINT32_MAX)), type,
                    static_cast<uint32_t>(length), converted);
}

OFP_API uint64_t OFP_msg_SetMsgHead(uint8_t *buffer, uint64_t space, uint32_t code)
{
    return OFP_msg_SetTlvData(buffer, space, OFP_TLV_MsgHead, sizeof code, &code);
}

OFP_API uint64_t OFP_msg_EncapBasicMsg(uint8_t *buffer, uint64_t space, uint32_t code,
                                       uint32_t type, uint64_t length, const void *value)
{
    ofp::Writer message(buffer, space);
    message.head(code).tlv(type, value, length);
    return message.whole() ? message.bytes().size : 0;
}

OFP_API uint64_t OFP_msg_GetTlvData(const uint8_t *buffer, uint64_t available, uint32_t type,
                                    uint64_t size, void *destination)
{
    const auto range = ofp::tlvs({buffer, available});
    const auto first = range.begin();
    if (first == range.end() || first->type != type)
        return 0;
    if (destination)
        OFP_msg_GetByteSwapData(first->value, first->length, first->type, size, destination);
    return static_cast<uint64_t>(first->end() - buffer);
}

OFP_API uint32_t OFP_msg_GetTlvDataByType(const uint8_t *buffer, uint64_t available, uint32_t type,
                                          uint64_t size, void *destination)
{
    const uint8_t *limit = buffer + available;
    for (const ofp::Tlv &tlv : ofp::tlvs({buffer, available})) {
        if (tlv.end() > limit)
            break;
        if (tlv.type == type) {
            OFP_msg_GetByteSwapData(tlv.value, tlv.length, tlv.type, size, destination);
            return OFP_RC_OK;
        }
        limit = buffer + available % 65536; // behind the first TLV lengths count in 16 bits
    }
    return OFP_RC_NOT_FOUND;
}

OFP_API uint64_t OFP_msg_GetMsgHead(const uint8_t *buffer, uint64_t available, uint32_t *code)
{
    uint32_t read = 0;
    const uint64_t size =
        OFP_msg_GetTlvData(buffer, available, OFP_TLV_MsgHead, sizeof read, &read);
    if (size != 0 && code)
        *code = read;
    return size;
}

OFP_API uint64_t OFP_msg_DecapBasicMsg(const uint8_t *buffer, uint64_t available, uint32_t code,
                                       uint32_t type, uint64_t size, void *destination)
{
    uint32_t read = 0;
    const uint64_t head = OFP_msg_GetMsgHead(buffer, available, &read);
    if (head == 0 || read != code)
        return 0;
    const uint64_t value =
        OFP_msg_GetTlvData(buffer + head, available - head, type, size, destination);
    return value != 0 ? head + value : 0;
}

OFP_API uint64_t OFP_msg_GetByteSwapData(const void *value, uint16_t length, uint16_t type,
                                         uint64_t size, void *destination)
{
    const uint64_t copied = std::min<uint64_t>(length, size);
    if (copied != 0)
        std::memcpy(destination, value, copied);
    OFP_bswap_ByteSwap(type, destination);
    return copied;
}

OFP_API void OFP_msg_ByteSwapData(uint16_t type, void *value) { OFP_bswap_ByteSwap(type, value); }

OFP_API void OFP_msg_InitPktContextTlv(OfpPktContext *context)
{
    *context = {};
    context->flags = 0x80;
    context->value_u32_72 = 0xffffffff;
}

OFP_API void OFP_msg_InitInstTblTlv(OfpInstTbl *table)
{
    *table = {};
    table->table_id = 255;
}

OFP_API void OFP_msg_CtrlTlvInit(OfpCtrl *controller) { *controller = {}; }

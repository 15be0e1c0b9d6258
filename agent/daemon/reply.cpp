#include "daemon/reply.h"

#include <cstring>

#include "openflow/wire.h"

namespace agent {

void Reply::result(uint32_t code)
{
    record(OFP_MSG_RESULT, OFP_TLV_ErrCode, OfpErrCode{.code = code});
}

void Reply::begin(uint32_t code)
{
    out_.begin();
    add(OFP_TLV_MsgHead, OfpMsgHead{.code = code});
}

uint8_t *Reply::add_bytes(uint16_t type, size_t length)
{
    constexpr size_t HEADER = 4;
    uint8_t *const tlv = out_.extend(HEADER + length);
    openflow::store<uint16_t>(tlv, type);
    openflow::store<uint16_t>(tlv + 2, static_cast<uint16_t>(length));
    return tlv + HEADER;
}

void Reply::add_record(uint16_t type, const void *value, size_t length)
{
    uint8_t *const copy = add_bytes(type, length);
    std::memcpy(copy, value, length);
    OFP_msg_ByteSwapData(type, copy);
}

} // namespace agent

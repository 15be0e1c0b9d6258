#include "daemon/reply.h"

#include <cstring>

#include "openflow/wire.h"

namespace agent {

std::array<uint8_t, 16> result_reply(uint32_t code)
{
    std::array<uint8_t, 16> reply{0, OFP_TLV_MsgHead, 0, 4, 0, 0, 0, 0, 0, OFP_TLV_ErrCode, 0, 4};
    openflow::store<uint32_t>(&reply[4], OFP_MSG_RESULT);
    openflow::store<uint32_t>(&reply[12], code);
    return reply;
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

void Reply::add_tlvs(Bytes tlvs)
{
    std::memcpy(out_.extend(tlvs.size()), tlvs.data(), tlvs.size());
}

void Reply::add_record(uint16_t type, const void *value, size_t length)
{
    uint8_t *const copy = add_bytes(type, length);
    std::memcpy(copy, value, length);
    OFP_msg_ByteSwapData(type, copy);
}

} // namespace agent

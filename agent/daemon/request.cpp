#include "daemon/request.h"

#include "openflow/wire.h"

namespace agent {

namespace {

constexpr size_t TLV_HEADER = 4;

struct Header {
    uint16_t type;
    uint16_t length;
};

Header header_of(Bytes tlv)
{
    return {openflow::load16(tlv.data()), openflow::load16(tlv.data() + 2)};
}

} // namespace

uint32_t take_value(Bytes &rest, uint16_t type, Bytes &value)
{
    if (rest.empty()) {
        return MISSING_TLV;
    }
    if (rest.size() < TLV_HEADER) {
        return BAD_TLV;
    }
    const Header header = header_of(rest);
    if (header.length > rest.size() - TLV_HEADER) {
        return BAD_TLV;
    }
    if (header.type != type) {
        return MISSING_TLV;
    }
    value = rest.subspan(TLV_HEADER, header.length);
    rest = rest.subspan(TLV_HEADER + header.length);
    return 0;
}

uint32_t read_request(Bytes datagram, Request &request)
{
    if (datagram.empty()) {
        return EMPTY_DATAGRAM;
    }
    OfpMsgHead head;
    if (take(datagram, OFP_TLV_MsgHead, head) != 0) {
        return NO_MESSAGE_HEAD;
    }
    request.code = head.code;
    request.body = datagram;
    return 0;
}

std::optional<Bytes> MessageWalk::stop(uint32_t code)
{
    code_ = code;
    rest_ = {};
    return std::nullopt;
}

std::optional<Bytes> MessageWalk::next()
{
    if (rest_.empty()) {
        return std::nullopt;
    }
    Bytes message;
    if (first_ == First::counts_its_header) {
        first_ = First::plain;
        if (rest_.size() < TLV_HEADER) {
            return stop(BAD_TLV);
        }
        const Header header = header_of(rest_);
        if (header.type != OFP_TLV_FlowEntry) {
            return stop(MISSING_TLV);
        }
        if (header.length < TLV_HEADER || header.length > rest_.size()) {
            return stop(BAD_TLV);
        }
        message = rest_.subspan(TLV_HEADER, header.length - TLV_HEADER);
        rest_ = rest_.subspan(header.length);
    } else if (const uint32_t code = take_value(rest_, OFP_TLV_FlowEntry, message)) {
        return stop(code);
    }
    if (message.size() < openflow::HEADER_SIZE) {
        return stop(BAD_TLV_LENGTH);
    }
    return message;
}

} // namespace agent

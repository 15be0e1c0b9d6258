#include "openflow/reply.h"

#include <algorithm>

namespace openflow {
namespace {

constexpr size_t ERROR_SIZE = 12;

void write_header(uint8_t *out, MessageType type, size_t length, uint32_t xid)
{
    out[0] = OFP_VERSION;
    out[1] = type;
    store(out + 2, static_cast<uint16_t>(length));
    store(out + 4, xid);
}

} // namespace

std::vector<uint8_t> encode_error(Bytes offender, Error error)
{
    const Bytes data = offender.first(std::min(offender.size(), ERROR_DATA_MAX));
    const auto header = peek_header(offender);
    std::vector<uint8_t> message(ERROR_SIZE + data.size());
    write_header(message.data(), OFPT_ERROR, message.size(), header ? header->xid : 0);
    store(&message[8], error.type);
    store(&message[10], error.code);
    std::copy(data.begin(), data.end(), message.begin() + ERROR_SIZE);
    return message;
}

std::array<uint8_t, HEADER_SIZE> encode_barrier_reply(uint32_t xid)
{
    std::array<uint8_t, HEADER_SIZE> message{};
    write_header(message.data(), OFPT_BARRIER_REPLY, message.size(), xid);
    return message;
}

} // namespace openflow

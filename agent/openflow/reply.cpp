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

size_t error_size(Bytes offender) { return ERROR_SIZE + std::min(offender.size(), ERROR_DATA_MAX); }

void write_error(Bytes offender, Error error, uint8_t *out)
{
    const Bytes data = offender.first(std::min(offender.size(), ERROR_DATA_MAX));
    const auto header = peek_header(offender);
    write_header(out, OFPT_ERROR, ERROR_SIZE + data.size(), header ? header->xid : 0);
    store(out + 8, error.type);
    store(out + 10, error.code);
    std::copy(data.begin(), data.end(), out + ERROR_SIZE);
}

std::vector<uint8_t> encode_error(Bytes offender, Error error)
{
    std::vector<uint8_t> message(error_size(offender));
    write_error(offender, error, message.data());
    return message;
}

std::array<uint8_t, HEADER_SIZE> encode_barrier_reply(uint32_t xid)
{
    std::array<uint8_t, HEADER_SIZE> message{};
    write_header(message.data(), OFPT_BARRIER_REPLY, message.size(), xid);
    return message;
}

} // namespace openflow

// A request as it arrived: views into the datagram, and the readers that take it apart.
#pragma once

#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

#include "daemon/result_codes.h"
#include "events/applications.h"
#include "ofp.h"

namespace agent {

struct Request {
    uint32_t code = 0;
    Bytes body;    // all that follows the message head
    Sender sender; // nobody, unless a connection brought it
};

// The readers return 0 or the result code that says what is wrong.
[[nodiscard]] uint32_t read_request(Bytes datagram, Request &request);

// Takes the value of the first TLV off rest.
[[nodiscard]] uint32_t take_value(Bytes &rest, uint16_t type, Bytes &value);

[[nodiscard]] inline uint32_t at_end(Bytes rest) { return rest.empty() ? 0 : TRAILING_BYTES; }

// Takes the first TLV off rest as a record in host order.
template <class Record>
[[nodiscard]] uint32_t take(Bytes &rest, uint16_t type, Record &record)
{
    Bytes value;
    if (const uint32_t code = take_value(rest, type, value)) {
        return code;
    }
    if (value.size() != sizeof record) {
        return BAD_TLV_LENGTH;
    }
    std::memcpy(&record, value.data(), sizeof record);
    OFP_msg_ByteSwapData(type, &record);
    return 0;
}

// A request whose body is this one record.
template <class Record>
[[nodiscard]] uint32_t take_only(const Request &request, uint16_t type, Record &record)
{
    Bytes rest = request.body;
    const uint32_t code = take(rest, type, record);
    return code ? code : at_end(rest);
}

// The OpenFlow messages of a flow or group datagram, one a TLV 122.
class MessageWalk {
public:
    // Of a group datagram the first TLV's length counts the TLV's own header; it alone does.
    enum class First { plain, counts_its_header };

    MessageWalk(Bytes tlvs, First first) : rest_(tlvs), first_(first) {}

    // The next message, of 8 bytes at least; nothing at the end, and code() says which end.
    std::optional<Bytes> next();
    uint32_t code() const { return code_; }

private:
    std::optional<Bytes> stop(uint32_t code);

    Bytes rest_;
    First first_;
    uint32_t code_ = 0;
};

} // namespace agent

// What a handler answers with: one or more datagrams.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "daemon/outbox.h"
#include "ofp.h"

namespace agent {

// The longest datagram that the library's callers make room for.
inline constexpr size_t REPLY_MAX = OFP_LARGE_DATAGRAM_SIZE;

// A whole result reply.
std::array<uint8_t, 16> result_reply(uint32_t code);

class Reply {
public:
    explicit Reply(Outbox &out) : out_(out) {}

    // See Outbox::reserve. For handlers that change something: first room for the answer, then the
    // change.
    void reserve(size_t datagrams, size_t bytes) { out_.reserve(datagrams, bytes); }

    // A result reply.
    void result(uint32_t code) { openflow(result_reply(code)); }

    // An OpenFlow message, which travels bare; of the second form, the room to write it to.
    void openflow(Bytes message) { out_.append(message); }
    uint8_t *openflow(size_t size) { return out_.append(size); }

    // A message head and one record.
    template <class Record>
    void record(uint32_t code, uint16_t type, const Record &value)
    {
        begin(code);
        add(type, value);
        end();
    }

    // A message head and several TLVs.
    void begin(uint32_t code);
    template <class Record>
    void add(uint16_t type, const Record &value)
    {
        add_record(type, &value, sizeof value);
    }
    // A TLV of bytes that are in network order already; returns where its value is to be written.
    uint8_t *add_bytes(uint16_t type, size_t length);
    // A TLV of a value in host order whose size is not that of a record.
    void add_value(uint16_t type, Bytes value) { add_record(type, value.data(), value.size()); }
    // Whole TLVs as they travel.
    void add_tlvs(Bytes tlvs);
    size_t size() const { return out_.open_size(); }
    void end() { out_.end(); }

private:
    void add_record(uint16_t type, const void *value, size_t length);

    Outbox &out_;
};

} // namespace agent

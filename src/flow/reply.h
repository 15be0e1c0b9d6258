// The agent daemon's answers to flow programming: OpenFlow messages, one per datagram.
#pragma once

#include <cstdint>

namespace ofp {

// A received message. Lengths are those of the datagram, never what the message claims.
class Reply {
public:
    Reply(const uint8_t *bytes, uint64_t length) : bytes_(bytes), length_(length) {}

    bool is_whole() const { return length_ >= 8; }        // has a header: type and xid
    bool is_whole_error() const { return length_ >= 12; } // has an error type and code
    bool is_barrier() const;
    bool is_error() const;
    uint32_t xid() const;
    uint32_t result() const; // of an error

private:
    const uint8_t *bytes_;
    uint64_t length_;
};

// Receives the answers to a batch of count rules, whose xids are 0 to count - 1. Each rule is
// answered by an optional error and a barrier reply; what comes first for a rule decides its entry
// of results, which may be null. 0 once as many barrier replies came as there are rules, or
// OFP_RC_FAILED.
uint32_t collect_results(int32_t socket, uint32_t count, uint64_t *results);

// 0 when the next message is a barrier reply, else OFP_RC_FAILED, once a barrier reply came or
// receiving ended.
uint32_t wait_for_barrier(int32_t socket);

} // namespace ofp

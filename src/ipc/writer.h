// Builds a datagram in a buffer of fixed room.
#pragma once

#include <cstdint>
#include <type_traits>

#include "ofp/codec.h"
#include "util/bytes.h"

namespace ofp {

// A record that may travel: every byte of it is a named member, so nothing unset goes along.
template <typename T>
concept WireRecord = std::is_trivially_copyable_v<T> && std::has_unique_object_representations_v<T>;

// A TLV that does not fit is left out, as agents are used to; whole() tells.
class Writer {
public:
    Writer(uint8_t *buffer, uint64_t room) : buffer_(buffer), room_(room) {}

    Writer &head(uint32_t code) { return tlv(OFP_TLV_MsgHead, &code, sizeof code); }

    Writer &tlv(uint32_t type, const void *value, uint64_t length)
    {
        const uint64_t written =
            OFP_msg_SetTlvData(buffer_ + size_, room_ - size_, type, length, value);
        whole_ = whole_ && written != 0;
        size_ += written;
        return *this;
    }
    template <WireRecord T>
    Writer &tlv(uint32_t type, const T &record)
    {
        return tlv(type, &record, sizeof record);
    }

    // What encode(room, out) writes behind the rest; it returns the bytes it wrote.
    template <typename Encode>
    Writer &with(Encode encode)
    {
        size_ += encode(room_ - size_, buffer_ + size_);
        return *this;
    }

    bool whole() const { return whole_; }
    Bytes bytes() const { return {buffer_, size_}; }

private:
    uint8_t *buffer_;
    uint64_t room_;
    uint64_t size_ = 0;
    bool whole_ = true;
};

} // namespace ofp

// The TLVs of a datagram, one after another: for (const Tlv &tlv : tlvs(bytes)).
#pragma once

#include <algorithm>
#include <cstdint>

#include "ofp/platform.h"
#include "util/bytes.h"

namespace ofp {

struct Tlv {
    uint16_t type;
    uint16_t length;
    const uint8_t *value; // null: no TLV

    const uint8_t *end() const { return value + length; }
};

class TlvIterator {
public:
    struct End {};

    explicit TlvIterator(Bytes rest) : rest_(rest) { read(); }

    const Tlv &operator*() const { return tlv_; }
    const Tlv *operator->() const { return &tlv_; }
    TlvIterator &operator++()
    {
        rest_ = rest_.from(tlv_.end());
        read();
        return *this;
    }
    bool operator==(End) const { return tlv_.value == nullptr; }

private:
    // The platform is believed as far as the bytes go: a value that is not wholly behind its header
    // and inside the rest ends the walk, and each step moves on.
    void read()
    {
        tlv_ = {};
        if (rest_.size == 0)
            return;
        Tlv next{};
        void *value = nullptr;
        const auto available = static_cast<uint32_t>(std::min<uint64_t>(rest_.size, UINT32_MAX));
        const uint32_t taken = STLV_Get(rest_.data, available, &next.type, &next.length, &value);
        next.value = static_cast<const uint8_t *>(value);
        if (taken != 0 && next.value > rest_.data && next.value <= rest_.end() &&
            next.length <= rest_.end() - next.value)
            tlv_ = next;
    }

    Bytes rest_;
    Tlv tlv_;
};

struct TlvRange {
    Bytes bytes;

    TlvIterator begin() const { return TlvIterator(bytes); }
    TlvIterator::End end() const { return {}; }
    bool empty() const { return begin() == end(); }
};

// Ends on the first TLV that is not whole.
inline TlvRange tlvs(Bytes bytes) { return {bytes}; }

} // namespace ofp

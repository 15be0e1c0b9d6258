// An OpenFlow message that is written from its beginning to its end.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "openflow/wire.h"

namespace agent {

class MessageWriter {
public:
    // The header; its length is set by bytes().
    MessageWriter(openflow::MessageType type, uint32_t xid)
    {
        be<uint8_t>(openflow::OFP_VERSION).be<uint8_t>(type).be<uint16_t>(0).be<uint32_t>(xid);
    }

    template <class T>
    MessageWriter &be(T value)
    {
        uint8_t bytes[sizeof value];
        openflow::store<T>(bytes, value);
        return raw(bytes);
    }
    MessageWriter &zeros(size_t count)
    {
        bytes_.resize(bytes_.size() + count);
        return *this;
    }
    MessageWriter &raw(openflow::Bytes bytes)
    {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
        return *this;
    }
    // A field of so many bytes: the text, cut to leave one zero at least, then zeros.
    MessageWriter &text(std::string_view text, size_t field)
    {
        const size_t length = std::min(text.size(), field - 1);
        bytes_.insert(bytes_.end(), text.begin(),
                      text.begin() + static_cast<std::ptrdiff_t>(length));
        return zeros(field - length);
    }

    // Overwrites what was written.
    template <class T>
    void store_at(size_t offset, T value)
    {
        openflow::store(&bytes_[offset], value);
    }

    size_t size() const { return bytes_.size(); }
    // The whole message, which must not be longer than 65535 bytes.
    openflow::Bytes bytes()
    {
        openflow::store(&bytes_[2], static_cast<uint16_t>(bytes_.size()));
        return bytes_;
    }

private:
    std::vector<uint8_t> bytes_;
};

} // namespace agent

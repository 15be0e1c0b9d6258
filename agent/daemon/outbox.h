// Datagrams that wait to be sent, in order, in one block of memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace agent {

using Bytes = std::span<const uint8_t>;

class Outbox {
public:
    // Room for this many further datagrams of this many bytes in all: appending them then neither
    // allocates nor fails. Throws std::bad_alloc and changes nothing.
    void reserve(size_t datagrams, size_t bytes);

    void append(Bytes datagram);
    uint8_t *append(size_t bytes); // the room to write the datagram to

    // A datagram written piece by piece. Between begin and end nothing else may be appended.
    void begin();
    uint8_t *extend(size_t bytes); // the room for the next piece
    void end();
    size_t open_size() const { return block_.size() - open_; } // bytes written since begin

    bool empty() const { return head_ == block_.size(); }
    size_t bytes() const { return block_.size() - head_; }
    size_t datagrams() const { return count_; }

    // Back to what waited when the mark was taken; nothing may have been dropped since.
    struct Mark {
        size_t bytes;
        size_t datagrams;
    };
    Mark mark() const { return {bytes(), count_}; }
    void rollback(Mark mark);

    // Replaces the datagram that begins when bytes() was this by one of the same length; nothing
    // may have been dropped since.
    void replace(size_t bytes, Bytes datagram);

    // The first datagrams, as many as there are and fit; drop takes them away once they are sent.
    size_t front(std::span<Bytes> datagrams) const;
    void drop(size_t datagrams);

    void clear();

private:
    using Length = uint32_t; // stands before each datagram

    void reclaim();

    std::vector<uint8_t> block_;
    size_t head_ = 0;  // what stands before it was sent
    size_t open_ = 0;  // where the datagram being written begins
    size_t count_ = 0; // datagrams that wait
};

} // namespace agent

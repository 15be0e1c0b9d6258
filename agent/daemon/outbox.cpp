#include "daemon/outbox.h"

#include <cstring>

namespace agent {

namespace {

constexpr size_t KEPT_WHEN_EMPTY = size_t{256} * 1024; // a larger block is given back
constexpr size_t RECLAIMED = size_t{16} * 1024;        // less is not worth a move

uint32_t length_at(const uint8_t *at)
{
    uint32_t length;
    std::memcpy(&length, at, sizeof length);
    return length;
}

} // namespace

void Outbox::reserve(size_t datagrams, size_t bytes)
{
    reclaim();
    const size_t needed = block_.size() + datagrams * sizeof(Length) + bytes;
    if (needed > block_.capacity()) {
        block_.reserve(needed > 2 * block_.capacity() ? needed : 2 * block_.capacity());
    }
}

// Gives back the room of what was sent once that is the larger part, so that each byte is moved
// once at most however long the queue is never empty.
void Outbox::reclaim()
{
    if (head_ >= RECLAIMED && head_ > block_.size() / 2) {
        block_.erase(block_.begin(), block_.begin() + static_cast<std::ptrdiff_t>(head_));
        head_ = 0;
    }
}

void Outbox::append(Bytes datagram)
{
    std::memcpy(append(datagram.size()), datagram.data(), datagram.size());
}

uint8_t *Outbox::append(size_t bytes)
{
    begin();
    uint8_t *const room = extend(bytes);
    end();
    return room;
}

void Outbox::begin()
{
    reclaim();
    block_.resize(block_.size() + sizeof(Length));
    open_ = block_.size();
}

uint8_t *Outbox::extend(size_t bytes)
{
    block_.resize(block_.size() + bytes);
    return block_.data() + block_.size() - bytes;
}

void Outbox::end()
{
    const auto length = static_cast<Length>(open_size());
    std::memcpy(block_.data() + open_ - sizeof length, &length, sizeof length);
    ++count_;
}

void Outbox::rollback(Mark mark)
{
    block_.resize(head_ + mark.bytes);
    count_ = mark.datagrams;
}

void Outbox::replace(size_t bytes, Bytes datagram)
{
    std::memcpy(block_.data() + head_ + bytes + sizeof(Length), datagram.data(), datagram.size());
}

size_t Outbox::front(std::span<Bytes> datagrams) const
{
    size_t count = 0;
    for (size_t at = head_; at < block_.size() && count < datagrams.size(); ++count) {
        const size_t length = length_at(block_.data() + at);
        datagrams[count] = {block_.data() + at + sizeof(Length), length};
        at += sizeof(Length) + length;
    }
    return count;
}

void Outbox::drop(size_t datagrams)
{
    for (; datagrams > 0 && !empty(); --datagrams) {
        head_ += sizeof(Length) + length_at(block_.data() + head_);
        --count_;
    }
    if (empty()) {
        clear();
    }
}

void Outbox::clear()
{
    head_ = 0;
    count_ = 0;
    block_.clear();
    if (block_.capacity() > KEPT_WHEN_EMPTY) {
        std::vector<uint8_t>().swap(block_);
    }
}

} // namespace agent

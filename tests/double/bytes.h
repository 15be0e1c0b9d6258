// Byte strings as tests write and read them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace test {

// A vector of bytes that a failed expectation prints as hex with offsets.
class Bytes : public std::vector<uint8_t> {
public:
    using std::vector<uint8_t>::vector;
    Bytes(const std::vector<uint8_t> &other) : std::vector<uint8_t>(other) {}

    Bytes slice(size_t from, size_t length = SIZE_MAX) const;
    Bytes &operator+=(const Bytes &tail);

    // Big-endian integers at an offset; a test that reads past the end fails.
    uint8_t u8(size_t offset) const;
    uint16_t u16(size_t offset) const;
    uint32_t u32(size_t offset) const;
    uint64_t u64(size_t offset) const;
};

Bytes operator+(Bytes head, const Bytes &tail);
void PrintTo(const Bytes &bytes, std::ostream *out);

// The bytes of hex digits; blanks between bytes are free, so that a line of a test can follow the
// fields: hex("0001 0004 00000006"). Anything else throws std::invalid_argument.
Bytes hex(std::string_view digits);
std::string to_hex(const Bytes &bytes);

Bytes bytes_of(const void *data, size_t length);
template <typename T>
requires std::is_trivially_copyable_v<T> Bytes bytes_of(const T &record)
{
    return bytes_of(&record, sizeof record);
}

// A record whose bytes are those given, the rest zero; bytes beyond its size throw.
void fill_record(void *record, size_t size, const Bytes &bytes);
template <typename T>
requires std::is_trivially_copyable_v<T> T record_of(const Bytes &bytes)
{
    T record;
    fill_record(&record, sizeof record, bytes);
    return record;
}

// count bytes first, first + 1, ...: every byte of a record distinct.
Bytes counting(size_t count, uint8_t first = 1);

// One TLV in network order, one message head, a datagram of a head and TLVs, a result reply.
Bytes tlv(uint16_t type, const Bytes &value);
Bytes message(uint32_t code, std::initializer_list<Bytes> tlvs = {});
Bytes result_reply(uint32_t code);

// Writes pattern over the stack below the caller, so that bytes a callee leaves uninitialised are
// not zero by chance.
void paint_stack(uint8_t pattern);

} // namespace test

#include "double/bytes.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <ostream>
#include <stdexcept>

namespace test {
namespace {

uint8_t digit(char c)
{
    constexpr std::string_view digits = "0123456789abcdef";
    size_t at = digits.find(c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c);
    if (at == digits.npos)
        throw std::invalid_argument(std::string("not a hex digit: ") + c);
    return static_cast<uint8_t>(at);
}

uint64_t big_endian(const Bytes &bytes, size_t offset, size_t width)
{
    uint64_t value = 0;
    for (size_t i = 0; i < width; ++i)
        value = value << 8 | bytes.at(offset + i);
    return value;
}

Bytes network(uint64_t value, size_t width)
{
    Bytes out(width);
    for (size_t i = width; i-- > 0; value >>= 8)
        out[i] = static_cast<uint8_t>(value);
    return out;
}

} // namespace

Bytes Bytes::slice(size_t from, size_t length) const
{
    if (from > size())
        throw std::out_of_range("slice starts past the end");
    auto first = begin() + static_cast<std::ptrdiff_t>(from);
    return Bytes(first, first + static_cast<std::ptrdiff_t>(std::min(length, size() - from)));
}

Bytes &Bytes::operator+=(const Bytes &tail)
{
    insert(end(), tail.begin(), tail.end());
    return *this;
}

uint8_t Bytes::u8(size_t offset) const { return at(offset); }
uint16_t Bytes::u16(size_t offset) const
{
    return static_cast<uint16_t>(big_endian(*this, offset, 2));
}
uint32_t Bytes::u32(size_t offset) const
{
    return static_cast<uint32_t>(big_endian(*this, offset, 4));
}
uint64_t Bytes::u64(size_t offset) const { return big_endian(*this, offset, 8); }

Bytes operator+(Bytes head, const Bytes &tail) { return head += tail; }

std::string to_hex(const Bytes &bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (i != 0 && i % 4 == 0)
            text += ' ';
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 15];
    }
    return text;
}

void PrintTo(const Bytes &bytes, std::ostream *out)
{
    *out << bytes.size() << " bytes";
    for (size_t at = 0; at < bytes.size() && at < 1024; at += 16)
        *out << "\n  " << at << ": " << to_hex(bytes.slice(at, 16));
    if (bytes.size() > 1024)
        *out << "\n  ...";
}

Bytes hex(std::string_view digits)
{
    Bytes out;
    bool half = false;
    for (char c : digits) {
        if (c == ' ' && !half)
            continue;
        if (half)
            out.back() = static_cast<uint8_t>(out.back() << 4 | digit(c));
        else
            out.push_back(digit(c));
        half = !half;
    }
    if (half)
        throw std::invalid_argument("odd number of hex digits");
    return out;
}

Bytes bytes_of(const void *data, size_t length)
{
    auto first = static_cast<const uint8_t *>(data);
    return Bytes(first, first + length);
}

void fill_record(void *record, size_t size, const Bytes &bytes)
{
    if (bytes.size() > size)
        throw std::invalid_argument("more bytes than the record holds");
    std::memset(record, 0, size);
    std::copy(bytes.begin(), bytes.end(), static_cast<uint8_t *>(record));
}

Bytes counting(size_t count, uint8_t first)
{
    Bytes out(count);
    std::iota(out.begin(), out.end(), first);
    return out;
}

Bytes tlv(uint16_t type, const Bytes &value)
{
    return network(type, 2) + network(value.size(), 2) + value;
}

Bytes message(uint32_t code, std::initializer_list<Bytes> tlvs)
{
    Bytes out = tlv(1, network(code, 4));
    for (const Bytes &one : tlvs)
        out += one;
    return out;
}

Bytes result_reply(uint32_t code) { return message(0x20000001, {tlv(2, network(code, 4))}); }

[[gnu::noinline]] void paint_stack(uint8_t pattern)
{
    uint8_t stack[128 * 1024];
    std::memset(stack, pattern, sizeof stack);
    asm volatile("" : : "r"(stack) : "memory");
}

} // namespace test

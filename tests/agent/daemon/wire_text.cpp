#include "agent/daemon/wire_text.h"

#include <cctype>
#include <stdexcept>

namespace agent::test {

Datagram hex(std::string_view digits)
{
    std::string packed;
    for (const char digit : digits) {
        if (digit != ' ') {
            packed += digit;
        }
    }
    Datagram datagram;
    if (packed.size() % 2 != 0) {
        throw std::invalid_argument("an odd number of digits");
    }
    for (size_t i = 0; i < packed.size(); i += 2) {
        datagram.push_back(static_cast<uint8_t>(std::stoul(packed.substr(i, 2), nullptr, 16)));
    }
    return datagram;
}

std::string to_hex(const Datagram &datagram)
{
    constexpr char DIGITS[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : datagram) {
        text += DIGITS[byte >> 4];
        text += DIGITS[byte & 15];
    }
    return text;
}

Datagram join(std::initializer_list<Datagram> parts)
{
    Datagram whole;
    for (const Datagram &part : parts) {
        whole.insert(whole.end(), part.begin(), part.end());
    }
    return whole;
}

Datagram be8(uint8_t value) { return {value}; }

Datagram be16(uint16_t value)
{
    return {static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
}

Datagram be32(uint32_t value)
{
    return join({be16(static_cast<uint16_t>(value >> 16)), be16(static_cast<uint16_t>(value))});
}

Datagram tlv(uint16_t type, const Datagram &value)
{
    return join({be16(type), be16(static_cast<uint16_t>(value.size())), value});
}

Datagram head(uint32_t code) { return tlv(1, be32(code)); }

Datagram result(uint32_t code) { return join({head(0x20000001), tlv(2, be32(code))}); }

} // namespace agent::test

// Datagrams as text: hexadecimal digits, spaces between them ignored.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace agent::test {

using Datagram = std::vector<uint8_t>;

Datagram hex(std::string_view digits);
std::string to_hex(const Datagram &datagram);

Datagram join(std::initializer_list<Datagram> parts);

// Big-endian numbers.
Datagram be8(uint8_t value);
Datagram be16(uint16_t value);
Datagram be32(uint32_t value);

// A TLV; a message head.
Datagram tlv(uint16_t type, const Datagram &value);
Datagram head(uint32_t code);

// A whole result reply with this code.
Datagram result(uint32_t code);

} // namespace agent::test

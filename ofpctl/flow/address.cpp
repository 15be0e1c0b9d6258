#include "flow/address.h"

#include <arpa/inet.h>

#include <cstring>

#include "flow/number_text.h"

namespace ofpctl {
namespace {

// One number of an IPv4 address, 0 to 255 without leading zeros; the characters it takes, or 0.
std::size_t scan_octet(std::string_view text, unsigned &octet)
{
    octet = 0;
    std::size_t length = 0;
    while (length < text.size() && length < 3 && text[length] >= '0' && text[length] <= '9')
        octet = octet * 10 + static_cast<unsigned>(text[length++] - '0');
    const bool leading_zero = length > 1 && text[0] == '0';
    return octet > 255 || leading_zero ? 0 : length;
}

std::size_t scan_mac_byte(std::string_view text, unsigned &byte)
{
    byte = 0;
    std::size_t length = 0;
    for (; length < text.size() && length < 2; ++length) {
        const int digit = hex_digit(text[length]);
        if (digit < 0)
            break;
        byte = byte << 4 | static_cast<unsigned>(digit);
    }
    return length;
}

} // namespace

bool scan_mac(std::string_view text, Wide &address)
{
    uint64_t sum = 0;
    for (int i = 0; i < 6; ++i) {
        if (i > 0) {
            if (text.empty() || text[0] != ':')
                return false;
            text.remove_prefix(1);
        }
        unsigned byte;
        const std::size_t length = scan_mac_byte(text, byte);
        if (length == 0)
            return false;
        text.remove_prefix(length);
        sum = sum << 8 | byte;
    }
    address = {0, sum};
    return text.empty();
}

bool scan_ipv4(std::string_view text, uint32_t &address)
{
    uint32_t sum = 0;
    for (int i = 0; i < 4; ++i) {
        if (i > 0) {
            if (text.empty() || text[0] != '.')
                return false;
            text.remove_prefix(1);
        }
        unsigned octet;
        const std::size_t length = scan_octet(text, octet);
        if (length == 0)
            return false;
        text.remove_prefix(length);
        sum = sum << 8 | octet;
    }
    address = sum;
    return text.empty();
}

bool scan_ipv6(std::string_view text, Wide &address)
{
    char copy[INET6_ADDRSTRLEN] = {};
    uint8_t bytes[16];
    if (text.size() >= sizeof copy || text.find('\0') != text.npos)
        return false;
    std::memcpy(copy, text.data(), text.size());
    if (inet_pton(AF_INET6, copy, bytes) != 1)
        return false;
    address = from_bytes(bytes, sizeof bytes);
    return true;
}

void append_mac(std::string &out, uint64_t address)
{
    for (int shift = 40; shift >= 0; shift -= 8) {
        append_byte(out, static_cast<uint8_t>(address >> shift));
        if (shift > 0)
            out += ':';
    }
}

void append_ipv4(std::string &out, uint32_t address)
{
    for (int shift = 24; shift >= 0; shift -= 8) {
        append_decimal(out, address >> shift & 255);
        if (shift > 0)
            out += '.';
    }
}

void append_ipv6(std::string &out, Wide address)
{
    uint8_t bytes[16];
    char text[INET6_ADDRSTRLEN];
    to_bytes(address, bytes, sizeof bytes);
    out += inet_ntop(AF_INET6, bytes, text, sizeof text);
}

} // namespace ofpctl

#include "flow/number_text.h"

#include <charconv>

#include <fmt/format.h>

namespace ofpctl {
namespace {

constexpr std::string_view hex_digits = "0123456789abcdef";

bool is_hex(std::string_view text)
{
    return text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

bool scan_hex(std::string_view digits, uint64_t &value)
{
    uint64_t sum = 0;
    for (const char c : digits) {
        const int digit = hex_digit(c);
        if (digit < 0 || sum >> 60 != 0)
            return false;
        sum = sum << 4 | static_cast<unsigned>(digit);
    }
    value = sum;
    return true;
}

// Up to 19 digits cannot overflow.
bool scan_decimal(std::string_view digits, uint64_t &value)
{
    if (digits.size() > 19) {
        const auto [end, error] = std::from_chars(digits.begin(), digits.end(), value);
        return error == std::errc{} && end == digits.end();
    }
    uint64_t sum = 0;
    for (const char c : digits) {
        const unsigned digit = static_cast<unsigned char>(c) - unsigned{'0'};
        if (digit > 9)
            return false;
        sum = sum * 10 + digit;
    }
    value = sum;
    return true;
}

bool all_digits(std::string_view text) { return text.find_first_not_of("0123456789") == text.npos; }

bool too_large(std::string_view text)
{
    if (is_hex(text))
        return text.substr(2).find_first_not_of("0123456789abcdefABCDEF") == text.npos;
    return all_digits(text);
}

} // namespace

int hex_digit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

bool scan_number(std::string_view text, uint64_t most, uint64_t &value)
{
    if (text.empty())
        return false;
    if (is_hex(text))
        return scan_hex(text.substr(2), value) && value <= most;
    if (text[0] == '0' && text.size() > 1)
        return false;
    return scan_decimal(text, value) && value <= most;
}

bool parse_number(std::string_view name, std::string_view text, uint64_t most, uint64_t &value,
                  Problem &problem)
{
    if (scan_number(text, most, value))
        return true;
    const std::string range = fmt::format("expected 0 to {}", most);
    if (text.empty())
        return problem.report(text, fmt::format("{} has no value", name), range);
    if (!is_hex(text) && text[0] == '0' && all_digits(text)) {
        const auto digits = text.substr(std::min(text.find_first_not_of('0'), text.size() - 1));
        return problem.report(text, fmt::format("'{}' begins with 0", text),
                              fmt::format("write {0}, or 0x{0} for hexadecimal", digits));
    }
    if (too_large(text))
        return problem.report(text, fmt::format("{} is too large for {}", text, name), range);
    return problem.report(text, fmt::format("'{}' is no number for {}", text, name),
                          range + ", or hexadecimal after 0x");
}

bool scan_bytes(std::string_view text, std::string &bytes)
{
    if (text.size() % 2 != 0)
        return false;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = hex_digit(text[i]);
        const int low = hex_digit(text[i + 1]);
        if (high < 0 || low < 0)
            return false;
        bytes.push_back(static_cast<char>(high << 4 | low));
    }
    return true;
}

void append_decimal(std::string &out, uint64_t value)
{
    char digits[20];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    out.append(digits, result.ptr);
}

void append_hex(std::string &out, uint64_t value, unsigned digits)
{
    char text[16];
    const auto result = std::to_chars(text, text + sizeof text, value, 16);
    const auto length = static_cast<unsigned>(result.ptr - text);
    out += "0x";
    if (length < digits)
        out.append(digits - length, '0');
    out.append(text, length);
}

void append_byte(std::string &out, uint8_t value)
{
    out += hex_digits[value >> 4];
    out += hex_digits[value & 15];
}

} // namespace ofpctl

// Numbers as text: decimal, or hexadecimal after 0x.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "flow/problem.h"

namespace ofpctl {

// False when the text is no number from 0 to most. A leading zero is no number: other programs
// read such digits as octal.
bool scan_number(std::string_view text, uint64_t most, uint64_t &value);

// The same, and says what is wrong. name: what the number is for.
bool parse_number(std::string_view name, std::string_view text, uint64_t most, uint64_t &value,
                  Problem &problem);

// Pairs of hexadecimal digits; false when it is anything else.
bool scan_bytes(std::string_view text, std::string &bytes);

// -1 for no hexadecimal digit.
int hex_digit(char c);

void append_decimal(std::string &out, uint64_t value);
// After 0x, with at least the given digits.
void append_hex(std::string &out, uint64_t value, unsigned digits = 1);
void append_byte(std::string &out, uint8_t value); // two digits, no 0x

} // namespace ofpctl

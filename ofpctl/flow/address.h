// MAC, IPv4 and IPv6 addresses as text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "flow/wide.h"

namespace ofpctl {

// False when the text is no such address.
bool scan_mac(std::string_view text, Wide &address); // one or two digits a byte
bool scan_ipv4(std::string_view text, uint32_t &address);
bool scan_ipv6(std::string_view text, Wide &address);

void append_mac(std::string &out, uint64_t address);
void append_ipv4(std::string &out, uint32_t address);
void append_ipv6(std::string &out, Wide address);

} // namespace ofpctl

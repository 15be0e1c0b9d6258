// Port numbers and the names of the reserved ports.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "flow/problem.h"

namespace ofpctl {

constexpr uint32_t last_port = 0xffffff00;

enum ReservedPort : uint32_t {
    port_in_port = 0xfffffff8,
    port_table = 0xfffffff9,
    port_normal = 0xfffffffa,
    port_flood = 0xfffffffb,
    port_all = 0xfffffffc,
    port_controller = 0xfffffffd,
    port_local = 0xfffffffe,
    port_any = 0xffffffff
};

bool scan_reserved_port(std::string_view text, uint32_t &port); // in any case of letters
bool parse_port(std::string_view name, std::string_view text, uint32_t &port, Problem &problem);
std::string_view reserved_port_name(uint32_t port); // empty for other ports
void append_port(std::string &out, uint32_t port);

} // namespace ofpctl

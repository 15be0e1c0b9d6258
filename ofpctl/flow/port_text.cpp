#include "flow/port_text.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "flow/nearest.h"
#include "flow/number_text.h"

namespace ofpctl {
namespace {

constexpr std::array<std::string_view, 8> names = {
    "IN_PORT", "TABLE", "NORMAL", "FLOOD", "ALL", "CONTROLLER", "LOCAL", "ANY",
};

bool same_letters(std::string_view text, std::string_view upper)
{
    return std::equal(text.begin(), text.end(), upper.begin(), upper.end(), [](char a, char b) {
        return (a >= 'a' && a <= 'z' ? static_cast<char>(a - 'a' + 'A') : a) == b;
    });
}

bool is_number(std::string_view text) { return !text.empty() && text[0] >= '0' && text[0] <= '9'; }

} // namespace

bool scan_reserved_port(std::string_view text, uint32_t &port)
{
    for (uint32_t i = 0; i < names.size(); ++i) {
        if (same_letters(text, names[i])) {
            port = port_in_port + i;
            return true;
        }
    }
    return false;
}

bool parse_port(std::string_view name, std::string_view text, uint32_t &port, Problem &problem)
{
    if (text.empty() || is_number(text)) {
        uint64_t number = 0;
        if (!parse_number(name, text, UINT32_MAX, number, problem))
            return false;
        port = static_cast<uint32_t>(number);
        return true;
    }
    if (scan_reserved_port(text, port))
        return true;
    Nearest nearest(text);
    for (const auto candidate : names)
        nearest.offer(candidate);
    const std::string hint =
        nearest.word().empty()
            ? fmt::format("expected a number or one of {}", fmt::join(names, ", "))
            : fmt::format("did you mean {}?", nearest.word());
    return problem.report(text, fmt::format("'{}' is no port", text), hint);
}

std::string_view reserved_port_name(uint32_t port)
{
    return port < port_in_port ? std::string_view() : names[port - port_in_port];
}

void append_port(std::string &out, uint32_t port)
{
    if (port < port_in_port)
        append_decimal(out, port);
    else
        out += reserved_port_name(port);
}

} // namespace ofpctl

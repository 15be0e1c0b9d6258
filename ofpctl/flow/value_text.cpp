#include "flow/value_text.h"

#include <array>

#include <fmt/format.h>

#include "flow/address.h"
#include "flow/nearest.h"
#include "flow/number_text.h"
#include "flow/port_text.h"

namespace ofpctl {
namespace {

struct Text {
    std::string_view name;
    std::string_view value;
    std::string_view mask;
    bool has_mask;
};

bool parse_plain_number(const Text &text, unsigned width, MaskedValue &out, Problem &problem)
{
    const uint64_t most = ones(width).low;
    return parse_number(text.name, text.value, most, out.value.low, problem) &&
           (!text.has_mask || parse_number(text.name, text.mask, most, out.mask.low, problem));
}

bool parse_port_number(const Text &text, MaskedValue &out, Problem &problem)
{
    uint32_t port;
    if (!parse_port(text.name, text.value, port, problem))
        return false;
    out.value.low = port;
    return !text.has_mask || parse_number(text.name, text.mask, UINT32_MAX, out.mask.low, problem);
}

bool report_address(std::string_view part, std::string_view kind, std::string_view example,
                    Problem &problem)
{
    return problem.report(part, fmt::format("'{}' is no {}", part, kind),
                          fmt::format("expected one like {}", example));
}

bool parse_mac(const Text &text, MaskedValue &out, Problem &problem)
{
    if (!scan_mac(text.value, out.value))
        return report_address(text.value, "MAC address", "00:11:22:33:44:55", problem);
    if (text.has_mask && !scan_mac(text.mask, out.mask))
        return report_address(text.mask, "MAC mask", "ff:ff:ff:00:00:00", problem);
    return true;
}

// The mask of /24; false when the text is no number up to the width.
bool scan_prefix(std::string_view text, unsigned width, Wide &mask)
{
    uint64_t bits;
    if (!scan_number(text, width, bits) || text.starts_with("0x"))
        return false;
    mask = prefix(static_cast<unsigned>(bits), width);
    return true;
}

bool scan_ipv4_mask(std::string_view text, Wide &mask)
{
    uint32_t dotted;
    if (scan_prefix(text, 32, mask))
        return true;
    if (scan_ipv4(text, dotted)) {
        mask = {0, dotted};
        return true;
    }
    return text.starts_with("0x") && scan_number(text, UINT32_MAX, mask.low);
}

bool parse_ipv4(const Text &text, MaskedValue &out, Problem &problem)
{
    uint32_t address;
    if (!scan_ipv4(text.value, address))
        return report_address(text.value, "IPv4 address", "10.0.0.1", problem);
    out.value.low = address;
    if (text.has_mask && !scan_ipv4_mask(text.mask, out.mask))
        return problem.report(text.mask, fmt::format("'{}' is no IPv4 mask", text.mask),
                              "expected a prefix length of 0 to 32, or one like 255.255.255.0");
    return true;
}

bool parse_ipv6(const Text &text, MaskedValue &out, Problem &problem)
{
    if (!scan_ipv6(text.value, out.value))
        return report_address(text.value, "IPv6 address", "2001:db8::1", problem);
    if (text.has_mask && !scan_prefix(text.mask, 128, out.mask) && !scan_ipv6(text.mask, out.mask))
        return problem.report(text.mask, fmt::format("'{}' is no IPv6 mask", text.mask),
                              "expected a prefix length of 0 to 128, or one like ffff:ffff::");
    return true;
}

// By bit of ipv6_exthdr.
constexpr std::array<std::string_view, 9> header_names = {
    "nonext", "esp", "auth", "dest", "frag", "router", "hop", "unrep", "unseq",
};

bool report_header(std::string_view word, Problem &problem)
{
    Nearest nearest(word);
    for (const auto name : header_names)
        nearest.offer(name);
    return problem.report(word, fmt::format("'{}' is no extension header", word),
                          nearest.word().empty()
                              ? fmt::format("expected one of {}", fmt::join(header_names, ", "))
                              : fmt::format("did you mean {}?", nearest.word()));
}

bool parse_header(std::string_view word, uint64_t &bit, Problem &problem)
{
    for (std::size_t i = 0; i < header_names.size(); ++i) {
        if (header_names[i] == word) {
            bit = uint64_t{1} << i;
            return true;
        }
    }
    return report_header(word, problem);
}

// "hop|frag": these headers and no other.
bool parse_header_list(std::string_view text, MaskedValue &out, Problem &problem)
{
    while (true) {
        const auto end = std::min(text.find('|'), text.size());
        uint64_t bit = 0;
        if (!parse_header(text.substr(0, end), bit, problem))
            return false;
        out.value.low |= bit;
        if (end == text.size())
            return true;
        text.remove_prefix(end + 1);
    }
}

// "+hop-frag": with hop, without frag, whatever else.
bool parse_header_signs(std::string_view text, MaskedValue &out, Problem &problem)
{
    out.mask = {};
    while (!text.empty()) {
        const bool with = text[0] == '+';
        text.remove_prefix(1);
        const auto end = std::min(text.find_first_of("+-"), text.size());
        uint64_t bit = 0;
        if (!parse_header(text.substr(0, end), bit, problem))
            return false;
        if ((out.mask.low & bit) != 0)
            return problem.report(text.substr(0, end),
                                  fmt::format("'{}' stands twice", text.substr(0, end)));
        out.mask.low |= bit;
        out.value.low |= with ? bit : 0;
        text.remove_prefix(end);
    }
    return true;
}

bool parse_headers(const Text &text, unsigned width, MaskedValue &out, Problem &problem)
{
    const char first = text.value.empty() ? '0' : text.value[0];
    if (text.has_mask || (first >= '0' && first <= '9'))
        return parse_plain_number(text, width, out, problem);
    if (first == '+' || first == '-')
        return parse_header_signs(text.value, out, problem);
    return parse_header_list(text.value, out, problem);
}

void append_headers(std::string &out, const MaskedValue &value)
{
    const bool exact = value.mask == ones(header_names.size());
    if (exact && !value.value) {
        out += '0';
        return;
    }
    const auto start = out.size();
    for (std::size_t i = 0; i < header_names.size(); ++i) {
        const bool set = (value.value.low >> i & 1) != 0;
        if (exact ? !set : (value.mask.low >> i & 1) == 0)
            continue;
        if (!exact)
            out += set ? '+' : '-';
        else if (out.size() > start)
            out += '|';
        out += header_names[i];
    }
}

void append_number(std::string &out, Form form, unsigned width, uint64_t value, bool exact)
{
    if (form == Form::code)
        append_hex(out, value, (width + 3) / 4);
    else if (form == Form::hex || !exact)
        append_hex(out, value);
    else
        append_decimal(out, value);
}

void append_one(std::string &out, Form form, unsigned width, Wide value, bool exact)
{
    switch (form) {
    case Form::mac:
        return append_mac(out, value.low);
    case Form::ipv4:
        return append_ipv4(out, static_cast<uint32_t>(value.low));
    case Form::ipv6:
        return append_ipv6(out, value);
    case Form::port:
        return append_port(out, static_cast<uint32_t>(value.low));
    default:
        return append_number(out, form, width, value.low, exact);
    }
}

} // namespace

bool parse_value(std::string_view name, std::string_view text, Form form, unsigned width,
                 MaskedValue &out, Problem &problem)
{
    out = {{}, ones(width)};
    if (text == "*") {
        out.mask = {};
        return true;
    }
    const auto slash = text.find('/');
    const bool has_mask = slash != text.npos;
    const Text parts = {name, text.substr(0, slash),
                        has_mask ? text.substr(slash + 1) : std::string_view(), has_mask};
    if (has_mask && parts.mask.empty())
        return problem.report(text.substr(slash), "the mask is missing");
    bool good;
    switch (form) {
    case Form::mac:
        good = parse_mac(parts, out, problem);
        break;
    case Form::ipv4:
        good = parse_ipv4(parts, out, problem);
        break;
    case Form::ipv6:
        good = parse_ipv6(parts, out, problem);
        break;
    case Form::port:
        good = parse_port_number(parts, out, problem);
        break;
    case Form::headers:
        good = parse_headers(parts, width, out, problem);
        break;
    default:
        good = parse_plain_number(parts, width, out, problem);
    }
    out.value = out.value & out.mask;
    return good;
}

void append_value(std::string &out, Form form, unsigned width, const MaskedValue &value)
{
    const bool exact = value.mask == ones(width);
    if (form == Form::headers)
        return append_headers(out, value);
    append_one(out, form, width, value.value, exact);
    if (exact)
        return;
    out += '/';
    const int length = prefix_length(value.mask, width);
    if (length >= 0 && (form == Form::ipv4 || form == Form::ipv6))
        append_decimal(out, static_cast<unsigned>(length));
    else
        append_one(out, form, width, value.mask, exact);
}

} // namespace ofpctl

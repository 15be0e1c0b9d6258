#include "flow/list_text.h"

#include <algorithm>

#include <fmt/format.h>

#include "flow/number_text.h"

namespace ofpctl {
namespace {

// Takes the part before the next ':' off the front of text; false when none is left.
bool take_part(std::string_view &text, std::string_view &part, bool &done)
{
    if (done)
        return false;
    const auto end = std::min(text.find(':'), text.size());
    part = text.substr(0, end);
    done = end == text.size();
    text.remove_prefix(std::min(end + 1, text.size()));
    return true;
}

bool parse_run(std::string_view name, std::string_view part, uint64_t &first, uint64_t &last,
               Problem &problem)
{
    const auto dash = std::min(part.find('-'), part.size());
    if (!parse_number(name, part.substr(0, dash), UINT32_MAX, first, problem))
        return false;
    last = first;
    if (dash == part.size())
        return true;
    if (!parse_number(name, part.substr(dash + 1), UINT32_MAX, last, problem))
        return false;
    return first <= last ? true
                         : problem.report(part, fmt::format("the range {} is empty", part),
                                          fmt::format("write {}-{}", last, first));
}

// How many interfaces from the front follow each other upwards.
std::size_t run_length(std::span<const uint32_t> interfaces)
{
    std::size_t length = 1;
    while (length < interfaces.size() && interfaces[length - 1] != UINT32_MAX &&
           interfaces[length] == interfaces[length - 1] + 1)
        ++length;
    return length;
}

} // namespace

bool parse_words(std::string_view name, std::string_view text, std::span<uint32_t> words,
                 Problem &problem)
{
    std::string_view part;
    bool done = false;
    for (std::size_t i = 0; take_part(text, part, done); ++i) {
        if (i == words.size())
            return problem.report(part, fmt::format("{} has too many words", name),
                                  fmt::format("expected at most {}", words.size()));
        uint64_t word;
        if (!parse_number(name, part, UINT32_MAX, word, problem))
            return false;
        words[i] = static_cast<uint32_t>(word);
    }
    return true;
}

void append_words(std::string &out, std::span<const uint32_t> words)
{
    while (words.size() > 1 && words.back() == 0)
        words = words.first(words.size() - 1);
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0)
            out += ':';
        append_hex(out, words[i]);
    }
}

bool parse_interfaces(std::string_view name, std::string_view text,
                      std::vector<uint32_t> &interfaces, Problem &problem)
{
    std::string_view part;
    bool done = false;
    while (take_part(text, part, done)) {
        uint64_t first;
        uint64_t last;
        if (!parse_run(name, part, first, last, problem))
            return false;
        if (last - first >= most_interfaces - interfaces.size())
            return problem.report(part, fmt::format("{} has too many interfaces", name),
                                  fmt::format("expected at most {}", most_interfaces));
        for (uint64_t index = first; index <= last; ++index)
            interfaces.push_back(static_cast<uint32_t>(index));
    }
    return true;
}

void append_interfaces(std::string &out, std::span<const uint32_t> interfaces)
{
    bool first = true;
    while (!interfaces.empty()) {
        const std::size_t run = run_length(interfaces);
        if (!first)
            out += ':';
        first = false;
        append_decimal(out, interfaces[0]);
        if (run > 2) {
            out += '-';
            append_decimal(out, interfaces[run - 1]);
        }
        interfaces = interfaces.subspan(run > 2 ? run : 1);
    }
}

} // namespace ofpctl

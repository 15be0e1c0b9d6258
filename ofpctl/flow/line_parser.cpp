#include "flow/line_parser.h"

#include <algorithm>

#include <fmt/format.h>

#include "flow/number_text.h"

namespace ofpctl {
namespace {

constexpr uint16_t default_priority = 32768;

bool is_separator(char c) { return c == ',' || c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

bool is_word(char c)
{
    return (c >= 'a' && c <= 'z') || c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z');
}

// The length of the quoted string that text begins with, all of text when it does not end.
std::size_t quoted_length(std::string_view text)
{
    std::size_t i = 1;
    while (i < text.size() && text[i] != '"')
        i += text[i] == '\\' ? std::size_t{2} : 1;
    return std::min(i + 1, text.size());
}

std::size_t value_length(std::string_view text)
{
    if (text.starts_with('"'))
        return quoted_length(text);
    std::size_t length = 0;
    while (length < text.size() && !is_separator(text[length]))
        ++length;
    return length;
}

// Takes the name of an option off the front of text: letters, and for exp the type behind it.
std::string_view take_name(std::string_view &text)
{
    std::size_t length = 0;
    while (length < text.size() && is_word(text[length]))
        ++length;
    if (text.substr(0, length) == "exp" && text.substr(length).starts_with('('))
        length = std::min(text.find(')'), text.size() - 1) + 1;
    const auto name = text.substr(0, length);
    text.remove_prefix(length);
    return name;
}

bool report_character(std::string_view text, Problem &problem)
{
    const bool printable = text[0] > ' ' && text[0] <= '~';
    return problem.report(
        text.substr(0, 1),
        printable ? fmt::format("unexpected '{}'", text[0])
                  : fmt::format("unexpected byte 0x{:02x}", static_cast<unsigned char>(text[0])),
        "options are NAME=VALUE, separated by commas");
}

// Takes one option off the front of text, which is not empty and begins with no separator.
bool take_option(std::string_view &text, OptionText &option, Problem &problem)
{
    option = {};
    option.name = take_name(text);
    if (option.name.empty())
        return report_character(text, problem);
    option.value = text.substr(0, 0);
    option.has_value = text.starts_with('=') || text.starts_with(':');
    if (option.has_value) {
        text.remove_prefix(1);
        option.value = text.substr(0, value_length(text));
        text.remove_prefix(option.value.size());
    }
    if (!text.empty() && !is_separator(text[0]))
        return report_character(text, problem);
    return true;
}

// actions=... takes all the rest of the line.
bool begins_actions(std::string_view text, OptionText &option)
{
    if (text[0] != 'a')
        return false;
    for (const std::string_view name : {"actions", "action"}) {
        if (text.starts_with(name) && text.substr(name.size()).starts_with('=')) {
            option = {text.substr(0, name.size()), text.substr(name.size() + 1), true};
            return true;
        }
    }
    return false;
}

const Keyword *find(std::string_view name)
{
    return find_keyword(name.starts_with("exp(") ? name.substr(0, 3) : name);
}

} // namespace

bool RuleReader::read_match(const OptionText &option)
{
    const Keyword *keyword = find(option.name);
    if (keyword == nullptr)
        return report_unknown(option.name);
    return is_of_match(keyword->option) || keyword->option == Option::foreign
               ? read(option)
               : problem_.report(option.name, fmt::format("{} is no match field", option.name));
}

bool RuleReader::read(const OptionText &option)
{
    const Keyword *keyword = find(option.name);
    if (keyword == nullptr)
        return report_unknown(option.name);
    switch (keyword->option) {
    case Option::table:
        return read_table(option);
    case Option::priority:
        return read_priority(option);
    case Option::actions:
        return problem_.report(option.name, fmt::format("{} has no list", option.name),
                               "write actions=ACTION,... at the end of the line");
    case Option::zero:
    case Option::always:
    case Option::never:
    case Option::nowhere:
    case Option::counters:
    case Option::foreign:
        return read_fixed(*keyword, option);
    default:
        return match_.read(*keyword, option);
    }
}

bool RuleReader::read_table(const OptionText &option)
{
    uint64_t number;
    if (draft_.table)
        return problem_.report(option.name, "duplicate table");
    if (!parse_number(option.name, option.value, 255, number, problem_))
        return false;
    if (number != flow_table)
        return problem_.report(option.value,
                               fmt::format("the library programs table {} only", flow_table),
                               fmt::format("write table={}", flow_table));
    draft_.table = flow_table;
    return true;
}

bool RuleReader::read_priority(const OptionText &option)
{
    uint64_t number;
    if (has_priority_)
        return problem_.report(option.name, "duplicate priority");
    if (!parse_number(option.name, option.value, UINT16_MAX, number, problem_))
        return false;
    draft_.item.priority = static_cast<uint16_t>(number);
    has_priority_ = true;
    return true;
}

// What every rule of the library has in common.
bool RuleReader::read_fixed(const Keyword &keyword, const OptionText &option)
{
    const auto refuse = [&](std::string why) {
        return problem_.report(option.name, std::move(why),
                               fmt::format("leave {} out", option.name));
    };
    uint64_t value = 0;
    switch (keyword.option) {
    case Option::zero:
        return scan_number(option.value, 0, value) ||
               refuse(fmt::format("the library always sends {} 0", option.name));
    case Option::always:
        return !option.has_value ||
               problem_.report(option.value, fmt::format("{} takes no value", option.name),
                               fmt::format("write {}", option.name));
    case Option::never:
        return refuse(fmt::format("the library never sets {}", option.name));
    case Option::nowhere:
        return refuse(fmt::format("the library never limits a rule to an {}", option.name));
    case Option::foreign:
        return refuse(fmt::format("the library has no match field {}", option.name));
    default:
        return true;
    }
}

bool RuleReader::report_unknown(std::string_view name)
{
    const auto nearest = nearest_keyword(name);
    return problem_.report(name, fmt::format("unknown field '{}'", name),
                           nearest.empty() ? std::string()
                                           : fmt::format("did you mean {}?", nearest));
}

bool RuleReader::read_actions(std::string_view name, std::string_view text)
{
    if (has_actions_)
        return problem_.report(name, "duplicate actions");
    has_actions_ = true;
    return parse_actions(text, draft_, problem_);
}

bool RuleReader::finish(std::string_view line, ParseMode mode)
{
    const auto end = line.substr(line.size());
    if (!has_priority_)
        draft_.item.priority = default_priority;
    if (!match_.finish())
        return false;
    if (!has_actions_ && mode == ParseMode::program)
        return problem_.report(end, "the actions are missing",
                               "add actions=ACTION,... or actions=drop");
    if (draft_.item.priority == 0 && draft_.match().fields == 0)
        return problem_.report(line, "the library refuses priority 0 with no match field",
                               "expected a priority of 1 or more");
    return true;
}

std::string_view without_comment(std::string_view line)
{
    auto end = line.find('#');
    if (end == line.npos)
        return line;
    for (std::size_t i = line.find('"'); i < end; i = line.find('"', i)) {
        i += quoted_length(line.substr(i));
        if (i > end)
            end = std::min(line.find('#', i), line.size());
    }
    return line.substr(0, end);
}

bool parse_line(std::string_view line, ParseMode mode, FlowDraft &draft, Problem &problem)
{
    draft.clear();
    RuleReader rule(draft, problem);
    line = without_comment(line);
    auto rest = line;
    while (true) {
        while (!rest.empty() && is_separator(rest[0]))
            rest.remove_prefix(1);
        if (rest.empty())
            break;
        OptionText option;
        if (begins_actions(rest, option)) {
            if (!rule.read_actions(option.name, option.value))
                return false;
            break;
        }
        if (!take_option(rest, option, problem) || !rule.read(option))
            return false;
    }
    return rule.finish(line, mode);
}

TextError to_error(std::string_view line, Problem problem)
{
    TextError error;
    const char *at = problem.where.data();
    if (at != nullptr && std::less_equal<>()(line.data(), at) &&
        std::less_equal<>()(at, line.data() + line.size())) {
        error.column = static_cast<std::size_t>(at - line.data()) + 1;
        error.length = problem.where.size();
    }
    error.message = std::move(problem.message);
    error.hint = std::move(problem.hint);
    return error;
}

} // namespace ofpctl

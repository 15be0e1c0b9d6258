#include "frame/arguments.h"

#include <charconv>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "frame/failure.h"
#include "frame/words.h"

namespace ofpctl {

namespace {

void check_word(const OptionRow &option, const std::string &word)
{
    const std::vector<std::string_view> choices = split(option.words, '|');
    for (const std::string_view choice : choices) {
        if (choice == word)
            return;
    }
    throw usage_failure(
        fmt::format("--{}: \"{}\" is none of {}", option.name, word, fmt::join(choices, ", ")));
}

void check_value(const OptionRow &option, const std::string &word)
{
    if (option.kind == Kind::number)
        require_number(fmt::format("--{}", option.name), word, option.least, option.most);
    else if (option.kind == Kind::word)
        check_word(option, word);
}

} // namespace

uint32_t require_number(std::string_view what, std::string_view text, uint32_t least, uint32_t most)
{
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = hexadecimal ? text.substr(2) : text;
    uint32_t number = 0;
    const char *end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, number, hexadecimal ? 16 : 10);
    if (error != std::errc{} || rest != end || number < least || number > most)
        throw usage_failure(
            fmt::format("{}: \"{}\" is not a number from {} to {}", what, text, least, most));
    return number;
}

const Arguments::Value &Arguments::value(std::string_view option) const
{
    const auto found = values_.find(option);
    if (found == values_.end())
        throw std::out_of_range(fmt::format("no option --{}", option));
    return found->second;
}

const std::string &Arguments::text(std::string_view option) const
{
    static const std::string nothing;
    const Words &words = all(option);
    return words.empty() ? nothing : words.back();
}

uint32_t Arguments::number(std::string_view option) const
{
    return require_number(option, text(option), 0, UINT32_MAX);
}

void Arguments::set(const OptionRow &option, Words words)
{
    if (words.size() > 1 && !option.repeats && option.kind != Kind::flag)
        throw usage_failure(
            fmt::format("--{} is given {} times; once is enough", option.name, words.size()));
    for (const std::string &word : words)
        check_value(option, word);
    Value value{.given = !words.empty(), .words = std::move(words)};
    if (!value.given && !option.fallback.empty())
        value.words.emplace_back(option.fallback);
    values_[std::string(option.name)] = std::move(value);
}

void Arguments::set_operands(const Operands &row, Words operands)
{
    if (operands.size() > row.most)
        throw usage_failure(row.most == 0
                                ? fmt::format("\"{}\": nothing is expected here", operands.front())
                                : fmt::format("\"{}\": one thing too many", operands[row.most]));
    if (operands.size() < row.least)
        throw usage_failure(fmt::format("{} is missing", row.form));
    if (row.kind == Kind::number) {
        for (const std::string &operand : operands)
            require_number(row.form, operand, row.lowest, row.highest);
    }
    operands_ = std::move(operands);
}

} // namespace ofpctl

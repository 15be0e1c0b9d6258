#include "frame/help.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include <fmt/format.h>

#include "frame/words.h"

#ifndef OFPCTL_VERSION
#error "the build says which version this is"
#endif

namespace ofpctl {

namespace {

constexpr std::string_view exit_statuses =
    "Exit status:\n"
    "  0 done  1 refused or failed  2 wrong usage or syntax, nothing sent\n"
    "  3 agent not running  4 no answer in time  5 the named thing does not exist\n"
    "  6 part of a batch refused  7 permission denied  130, 143 interrupted\n";

void append_row(std::string &out, std::string_view name, std::size_t column, std::string_view help)
{
    const std::string lines = wrap(help, column + 4);
    const std::string start = fmt::format("  {:<{}}  ", name, column);
    if (start.size() > column + 4)
        out += start + "\n" + lines;
    else
        out += start + lines.substr(column + 4);
}

void append_options(std::string &out, std::string_view title, std::span<const OptionRow> options)
{
    if (options.empty())
        return;
    out += fmt::format("\n{}:\n", title);
    for (const OptionRow &option : options)
        append_row(out, option_form(option), 22, option_help(option));
}

void append_settings(std::string &out, const Verb &verb)
{
    if (verb.settings == nullptr)
        return;
    out += "\nNames and values:\n";
    for (const SettingRow *row : verb.settings())
        append_row(out, setting_form(*row), 34, setting_help(*row));
}

} // namespace

std::string wrap(std::string_view text, std::size_t indent, std::size_t width)
{
    std::string out;
    for (const std::string_view paragraph : split(text, '\n')) {
        std::size_t at = 0;
        for (const std::string_view word : split(paragraph, ' ')) {
            if (at > 0 && at + 1 + word.size() > width) {
                out += '\n';
                at = 0;
            }
            out += at == 0 ? std::string(indent, ' ') : " ";
            out += word;
            at = (at == 0 ? indent : at + 1) + word.size();
        }
        out += '\n';
    }
    return out;
}

std::string usage(const Noun &noun, const Verb &verb)
{
    std::string line = fmt::format("ofpctl {} {}", noun.name, verb.name);
    if (!verb.options.empty())
        line += " [OPTIONS]";
    if (!verb.operands.form.empty())
        line += fmt::format(" {}", verb.operands.form);
    return line;
}

std::string option_form(const OptionRow &option)
{
    std::string form = option.letter ? fmt::format("-{}, ", option.letter) : std::string();
    form += fmt::format("--{}", option.name);
    if (!option.value.empty())
        form += fmt::format(" {}", option.value);
    return form;
}

std::string option_help(const OptionRow &option)
{
    std::string help(option.help);
    if (option.kind == Kind::word) {
        std::string words(option.words);
        std::replace(words.begin(), words.end(), '|', ' ');
        help += fmt::format(": {}", words);
    } else if (option.kind == Kind::number) {
        help += fmt::format(", {} to {}", option.least, option.most);
    }
    if (!option.fallback.empty())
        help += fmt::format(" (default {})", option.fallback);
    return help;
}

std::string setting_form(const SettingRow &row)
{
    std::string form = fmt::format("{}={}", row.name, row.value);
    for (const Choice &choice : row.choices)
        form += fmt::format("{}{}", &choice == row.choices.data() ? "" : "|", choice.word);
    return form;
}

std::string setting_help(const SettingRow &row)
{
    switch (row.form) {
    case ValueForm::number:
        return fmt::format("{}, {} to {}", row.help, row.least, row.most);
    case ValueForm::text:
        return fmt::format("{}, at most {} bytes", row.help, row.most);
    case ValueForm::ids:
        return fmt::format("{}; ids {} to {}", row.help, row.least, row.most);
    default:
        return std::string(row.help);
    }
}

std::string verb_help(const Noun &noun, const Verb &verb)
{
    std::string out = fmt::format("Usage: {}\n\n{}", usage(noun, verb), wrap(verb.help, 0));
    if (!verb.details.empty())
        out += "\n" + wrap(verb.details, 0);
    append_options(out, "Options", verb.options);
    append_settings(out, verb);
    append_options(out, "Options of every command", common_options());
    out += "\nExamples:\n";
    for (const Example &example : verb.examples)
        out += fmt::format("  {}\n      {}\n", example.command, example.purpose);
    return out;
}

std::string noun_help(const Noun &noun)
{
    std::string out = fmt::format("Usage: ofpctl {} COMMAND [OPTIONS]\n\n{}\nCommands:\n",
                                  noun.name, wrap(noun.help, 0));
    for (const Verb &verb : noun.verbs)
        append_row(out, verb.name, 10, verb.help);
    out += "\nExamples:\n";
    for (const Verb &verb : noun.verbs)
        out += fmt::format("  {}\n", verb.examples.front().command);
    out += fmt::format("\nofpctl {} COMMAND --help says more.\n", noun.name);
    return out;
}

std::string program_help()
{
    std::string out = "Usage: ofpctl OBJECT COMMAND [OPTIONS]\n\n"
                      "Controls the switch's OpenFlow agent.\n\nCommands:\n";
    for (const Noun &noun : nouns()) {
        for (const Verb &verb : noun.verbs)
            append_row(out, fmt::format("{} {}", noun.name, verb.name), 18, verb.help);
    }
    append_options(out, "Options", common_options());
    out += "\nExamples:\n"
           "  ofpctl agent start\n"
           "  ofpctl flow add 'priority=100,in_port=1,actions=output:2'\n"
           "  ofpctl flow show\n\n";
    out += exit_statuses;
    out += "\nofpctl OBJECT COMMAND --help says more; ofpctl(1) is the manual.\n";
    return out;
}

std::string_view program_version() { return OFPCTL_VERSION; }

} // namespace ofpctl

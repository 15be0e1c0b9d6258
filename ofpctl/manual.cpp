// Writes the manual page of ofpctl: the page's own text from a file, the commands from the verb
// table. A part of the build, not installed.
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "frame/help.h"
#include "frame/verb.h"

namespace ofpctl {

namespace {

constexpr std::string_view place = "@COMMANDS@\n";

// Text in scdoc's notation.
std::string plain(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        if (c == '_' || c == '*' || c == '\\' || c == '`' || c == '~' || c == '[' || c == '#')
            out += '\\';
        out += c;
    }
    return out;
}

void append_options(std::string &out, std::span<const OptionRow> options)
{
    for (const OptionRow &option : options)
        out += fmt::format("\t*{}*\n\t\t{}\n\n", plain(option_form(option)),
                           plain(option_help(option)));
}

void append_settings(std::string &out, const Verb &verb)
{
    if (verb.settings == nullptr)
        return;
    for (const SettingRow *row : verb.settings())
        out +=
            fmt::format("\t*{}*\n\t\t{}\n\n", plain(setting_form(*row)), plain(setting_help(*row)));
}

void append_verb(std::string &out, const Noun &noun, const Verb &verb)
{
    out += fmt::format("*{}*\n\t{}", plain(usage(noun, verb)), plain(verb.help));
    if (!verb.details.empty())
        out += fmt::format(" {}", plain(verb.details));
    out += "\n\n";
    append_options(out, verb.options);
    append_settings(out, verb);
    for (const Example &example : verb.examples)
        out += fmt::format("\t{}:\n\n\t\t{}\n\n", plain(example.purpose), plain(example.command));
}

std::string commands()
{
    std::string out;
    for (const Noun &noun : nouns()) {
        out += fmt::format("## {}\n\n{}\n\n", noun.name, plain(noun.help));
        for (const Verb &verb : noun.verbs)
            append_verb(out, noun, verb);
    }
    out += "# OPTIONS OF EVERY COMMAND\n\n";
    for (const OptionRow &option : common_options())
        out +=
            fmt::format("*{}*\n\t{}\n\n", plain(option_form(option)), plain(option_help(option)));
    return out;
}

int write_manual(const char *source, const char *target)
{
    std::ifstream file(source);
    std::stringstream whole;
    whole << file.rdbuf();
    std::string text = whole.str();
    const std::size_t at = text.find(place);
    if (!file || at == std::string::npos) {
        std::cerr << source << ": cannot be read, or has no line @COMMANDS@\n";
        return 1;
    }
    text.replace(at, place.size(), commands());
    std::ofstream out(target);
    out << text << std::flush;
    return out ? 0 : 1;
}

} // namespace

} // namespace ofpctl

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::cerr << "usage: ofpctl-manual SOURCE TARGET\n";
        return 2;
    }
    return ofpctl::write_manual(argv[1], argv[2]);
}

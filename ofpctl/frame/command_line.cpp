// The one place that knows CLI11.
#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "frame/arguments.h"
#include "frame/failure.h"
#include "frame/words.h"

namespace ofpctl {

namespace {

struct Bound {
    const OptionRow *option;
    Words words;
};

std::string spelling(const OptionRow &option)
{
    return option.letter ? fmt::format("-{},--{}", option.letter, option.name)
                         : fmt::format("--{}", option.name);
}

void bind(CLI::App &app, Bound &bound)
{
    const std::string names = spelling(*bound.option);
    if (bound.option->kind == Kind::flag) {
        app.add_flag_callback(names, [&bound] { bound.words.assign(1, ""); })
            ->disable_flag_override();
        return;
    }
    app.add_option(names, bound.words)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->type_name(std::string(bound.option->value));
}

// Keeps its elements in place: CLI11 holds references to them.
std::vector<std::unique_ptr<Bound>> bind_all(CLI::App &app, std::span<const OptionRow> options)
{
    std::vector<std::unique_ptr<Bound>> all;
    for (const OptionRow &option : options) {
        all.push_back(std::make_unique<Bound>(Bound{&option, {}}));
        bind(app, *all.back());
    }
    return all;
}

void parse(CLI::App &app, Words words)
{
    std::reverse(words.begin(), words.end()); // as CLI11 takes them
    try {
        app.parse(std::move(words));
    } catch (const CLI::ArgumentMismatch &error) {
        throw usage_failure(std::string("a value is missing: ") + error.what());
    } catch (const CLI::ParseError &error) {
        throw usage_failure(error.what());
    }
}

[[noreturn]] void refuse_option(const std::string &word, const Verb &verb)
{
    const std::string name = word.substr(0, word.find('='));
    std::vector<std::string> spelled;
    for (const std::span<const OptionRow> options : {verb.options, common_options()}) {
        for (const OptionRow &option : options)
            spelled.push_back(fmt::format("--{}", option.name));
    }
    const std::vector<std::string_view> known(spelled.begin(), spelled.end());
    throw usage_failure(fmt::format("{}: no such option; {}", name, one_of(name, known)));
}

} // namespace

CommandLine split_command_line(std::span<const std::string> words)
{
    CLI::App app;
    app.set_help_flag();
    app.prefix_command();
    const auto bound = bind_all(app, common_options());
    parse(app, Words(words.begin(), words.end()));

    CommandLine line;
    line.rest = app.remaining();
    line.common.assign(words.begin(), words.end() - static_cast<std::ptrdiff_t>(line.rest.size()));
    return line;
}

Arguments parse_arguments(const Noun &noun, const Verb &verb, const Words &words)
{
    CLI::App app(std::string(verb.help), fmt::format("ofpctl {} {}", noun.name, verb.name));
    app.set_help_flag();
    app.allow_extras();
    const auto own = bind_all(app, verb.options);
    const auto common = bind_all(app, common_options());
    Words operands;
    app.add_option("operands", operands)->expected(0, -1);
    const auto mark = std::find(words.begin(), words.end(), "--");
    parse(app, Words(words.begin(), mark));
    if (mark != words.end())
        operands.insert(operands.end(), mark + 1, words.end());

    for (const std::string &extra : app.remaining())
        refuse_option(extra, verb);
    Arguments arguments;
    for (const auto &bound : common)
        arguments.set(*bound->option, std::move(bound->words));
    const bool help = arguments.given("help");
    for (const auto &bound : own)
        arguments.set(*bound->option, std::move(bound->words));
    if (!help)
        arguments.set_operands(verb.operands, std::move(operands));
    return arguments;
}

} // namespace ofpctl

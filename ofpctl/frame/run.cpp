#include "frame/run.h"

#include <algorithm>
#include <exception>
#include <new>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "frame/arguments.h"
#include "frame/context.h"
#include "frame/failure.h"
#include "frame/help.h"
#include "frame/interrupt.h"
#include "frame/message.h"
#include "frame/output.h"
#include "frame/patience.h"
#include "frame/verb.h"
#include "frame/words.h"

namespace ofpctl {

namespace {

// Known before anything else: how a wrong command line is reported depends on it.
bool wants_json(std::span<const std::string> words)
{
    const auto end = std::find(words.begin(), words.end(), "--");
    return std::find(words.begin(), end, "--json") != end;
}

template <class Row>
std::vector<std::string_view> names(std::span<const Row> rows)
{
    std::vector<std::string_view> all;
    for (const Row &row : rows)
        all.push_back(row.name);
    return all;
}

const Noun &require_noun(const std::string &word)
{
    if (const Noun *noun = find_noun(word))
        return *noun;
    if (word.starts_with('-'))
        throw usage_failure(fmt::format("{}: no such option; ofpctl --help lists them", word));
    const auto known = names(nouns());
    throw usage_failure(fmt::format("{}: no such object; {}", word, one_of(word, known)));
}

const Verb &require_verb(const Noun &noun, const std::string &word)
{
    if (const Verb *verb = find_verb(noun, word))
        return *verb;
    const auto known = names(noun.verbs);
    throw usage_failure(
        fmt::format("{} {}: no such command; {}", noun.name, word, one_of(word, known)));
}

void print_version(Output &out)
{
    if (out.json())
        out.document().text("version", program_version());
    else
        out.line(fmt::format("ofpctl {}", program_version()));
}

void print_help(Output &out, const std::string &text)
{
    if (out.json())
        out.document().text("help", text);
    else
        out.write(text);
}

int run_verb(const Noun &noun, const Verb &verb, const Words &words, Output &out)
{
    const Arguments arguments = parse_arguments(noun, verb, words);
    if (arguments.given("help")) {
        print_help(out, verb_help(noun, verb));
        return status_done;
    }
    if (arguments.given("version")) {
        print_version(out);
        return status_done;
    }
    set_patience(arguments.number("timeout"));
    Context context{noun, verb, arguments, out};
    verb.run(context);
    return context.status;
}

bool is_help(const std::string &word) { return word == "--help" || word == "-h"; }

bool contains(const Words &words, std::string_view a, std::string_view b)
{
    return std::any_of(words.begin(), words.end(),
                       [&](const std::string &word) { return word == a || word == b; });
}

// "ofpctl help flow add" is "ofpctl flow add --help".
void turn_help(CommandLine &line)
{
    if (line.rest.empty() || line.rest.front() != "help")
        return;
    line.rest.erase(line.rest.begin());
    line.common.emplace_back("--help");
}

int dispatch(std::span<const std::string> words, Output &out)
{
    CommandLine line = split_command_line(words);
    turn_help(line);
    const bool help = contains(line.common, "--help", "-h");
    if (line.rest.empty() && contains(line.common, "--version", "-V")) {
        print_version(out);
        return status_done;
    }
    if (line.rest.empty() && !help)
        throw usage_failure("nothing to do; ofpctl --help lists the commands");
    if (line.rest.empty()) {
        print_help(out, program_help());
        return status_done;
    }
    const Noun &noun = require_noun(line.rest[0]);
    if (line.rest.size() == 1 ? help : is_help(line.rest[1])) {
        print_help(out, noun_help(noun));
        return status_done;
    }
    // An object that can only be shown needs no word for it.
    if (noun.verbs.size() == 1 && noun.verbs.front().name == "show" &&
        (line.rest.size() == 1 || line.rest[1].starts_with('-')))
        line.rest.insert(line.rest.begin() + 1, "show");
    if (line.rest.size() == 1)
        throw usage_failure(
            fmt::format("{}: which command? {}", noun.name, one_of("", names(noun.verbs))));
    const Verb &verb = require_verb(noun, line.rest[1]);
    Words arguments = line.common;
    arguments.insert(arguments.end(), line.rest.begin() + 2, line.rest.end());
    return run_verb(noun, verb, arguments, out);
}

struct Ending {
    int status = status_done;
    std::optional<Failure> failure;
};

Ending fail(Failure failure)
{
    report(failure.message);
    const int status = failure.status;
    return {status, std::move(failure)};
}

Ending attempt(std::span<const std::string> words, Output &out)
{
    try {
        watch_interrupts();
        return {dispatch(words, out), std::nullopt};
    } catch (Failure &failure) {
        return fail(std::move(failure));
    } catch (const std::bad_alloc &) {
        return fail({.message = "out of memory"});
    } catch (const std::exception &error) {
        return fail({.message = fmt::format("a mistake in ofpctl: {}", error.what())});
    }
}

} // namespace

int run(std::span<const std::string> words)
{
    Output out(wants_json(words));
    const Ending ending = attempt(words, out);
    try {
        out.finish(ending.failure ? &*ending.failure : nullptr);
        return ending.status;
    } catch (const Failure &unwritten) {
        return ending.failure ? ending.status : fail(unwritten).status;
    }
}

} // namespace ofpctl

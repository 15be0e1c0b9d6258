// Completion scripts, made of the verb table.
#include <string>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include "frame/context.h"
#include "frame/help.h"
#include "frame/words.h"
#include "verbs/nouns.h"

namespace ofpctl {

namespace {

bool takes_value(const OptionRow &option) { return option.kind != Kind::flag; }

std::string spaced(std::string_view words)
{
    std::string out;
    for (const std::string_view word : split(words, '|'))
        out += fmt::format("{}{}", out.empty() ? "" : " ", word);
    return out;
}

// The words a NAME=VALUE operand may begin with: whole where the values are known.
std::vector<std::string> setting_words(const Verb &verb)
{
    std::vector<std::string> words;
    if (verb.settings == nullptr)
        return words;
    for (const SettingRow *row : verb.settings()) {
        if (row->choices.empty())
            words.push_back(fmt::format("{}=", row->name));
        for (const Choice &choice : row->choices)
            words.push_back(fmt::format("{}={}", row->name, choice.word));
    }
    return words;
}

// Calls visit(option) for the verb's options and the common ones.
template <class Visit>
void each_option(const Verb &verb, Visit visit)
{
    for (const std::span<const OptionRow> rows : {verb.options, common_options()}) {
        for (const OptionRow &option : rows)
            visit(option);
    }
}

// In single quotes for a shell.
std::string quoted(std::string_view text, std::string_view quote_inside)
{
    std::string out = "'";
    for (const char c : text) {
        if (c == '\'')
            out += quote_inside;
        else
            out += c;
    }
    return out + "'";
}

// ---- bash ----

constexpr std::string_view bash_begin =
    R"(# Completion of ofpctl for bash; made by "ofpctl completion bash".
_ofpctl()
{
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} noun= verb= i
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        --timeout) ((i++)) ;;
        -*) ;;
        *) if [[ -z $noun ]]; then noun=${COMP_WORDS[i]}
           elif [[ -z $verb ]]; then verb=${COMP_WORDS[i]}; fi ;;
        esac
    done
    # Readline takes "=" for a word of its own: put NAME=VALUE together again.
    local whole=$cur
    if [[ $cur == '=' ]]; then whole=$prev=; elif [[ $prev == '=' ]]; then whole=${COMP_WORDS[COMP_CWORD-2]}=$cur; fi
    local words= files= settings=
    case "$noun $verb $prev" in
)";

constexpr std::string_view bash_middle = R"(    *)
        case "$noun $verb" in
)";

constexpr std::string_view bash_end = R"(        esac ;;
    esac
    [[ $cur == -* ]] && files=
    if [[ -n $settings && $cur != -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$settings" -- "$whole")
        [[ $whole == *=* && $whole != "$cur" ]] && COMPREPLY=("${COMPREPLY[@]#*=}")
        [[ ${COMPREPLY[*]} == *= ]] && compopt -o nospace 2>/dev/null
        return 0
    fi
    mapfile -t COMPREPLY < <(compgen ${files:+-f} -W "$words" -- "$cur")
    [[ -n $files ]] && compopt -o filenames 2>/dev/null
    return 0
}
complete -F _ofpctl ofpctl
)";

void append_bash_values(std::string &out, const Noun &noun, const Verb &verb)
{
    each_option(verb, [&](const OptionRow &option) {
        if (!takes_value(option))
            return;
        std::string names = fmt::format("\"{} {} --{}\"", noun.name, verb.name, option.name);
        if (option.letter)
            names += fmt::format("|\"{} {} -{}\"", noun.name, verb.name, option.letter);
        const std::string does =
            option.kind == Kind::file ? "files=1" : fmt::format("words='{}'", spaced(option.words));
        out += fmt::format("    {}) {} ;;\n", names, does);
    });
}

void append_bash_verb(std::string &out, const Noun &noun, const Verb &verb)
{
    std::string words;
    each_option(verb, [&](const OptionRow &option) {
        words += fmt::format("{}--{}", words.empty() ? "" : " ", option.name);
    });
    std::string settings;
    for (const std::string &word : setting_words(verb))
        settings += fmt::format("{}{}", settings.empty() ? "" : " ", word);
    if (!settings.empty())
        settings = fmt::format(" settings='{}'", settings);
    out += fmt::format("        \"{} {}\") words='{}'{}{} ;;\n", noun.name, verb.name, words,
                       verb.operands.kind == Kind::file ? " files=1" : "", settings);
}

std::string bash_script()
{
    std::string out(bash_begin);
    std::string objects;
    for (const Noun &noun : nouns()) {
        objects += fmt::format("{}{}", objects.empty() ? "" : " ", noun.name);
        for (const Verb &verb : noun.verbs)
            append_bash_values(out, noun, verb);
    }
    out += bash_middle;
    out += fmt::format("        \" \") words='{} --help --version --json' ;;\n", objects);
    for (const Noun &noun : nouns()) {
        std::string verbs;
        for (const Verb &verb : noun.verbs)
            verbs += fmt::format("{}{}", verbs.empty() ? "" : " ", verb.name);
        out += fmt::format("        \"{} \") words='{} --help' ;;\n", noun.name, verbs);
        for (const Verb &verb : noun.verbs)
            append_bash_verb(out, noun, verb);
    }
    out += bash_end;
    return out;
}

// ---- zsh ----

constexpr std::string_view zsh_begin = R"(#compdef ofpctl
# Completion of ofpctl for zsh; made by "ofpctl completion zsh".
_ofpctl()
{
    local -a plain
    plain=(${words[2,CURRENT-1]:#-*})
    case "${plain[1,2]}" in
)";

constexpr std::string_view zsh_end = R"(    esac
}
if [[ $funcstack[1] == _ofpctl ]]; then
    _ofpctl "$@"
else
    compdef _ofpctl ofpctl
fi
)";

std::string zsh_quoted(std::string_view text) { return quoted(text, "'\\''"); }

// What _arguments and _describe take for special in a description.
std::string zsh_description(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        if (c == ':' || c == '[' || c == ']' || c == '\\')
            out += '\\';
        out += c;
    }
    return out;
}

template <class Row>
void append_zsh_choices(std::string &out, std::string_view at, std::span<const Row> rows)
{
    out += fmt::format("    {})\n        local -a choices=(\n", zsh_quoted(at));
    for (const Row &row : rows)
        out += fmt::format("            {}\n",
                           zsh_quoted(fmt::format("{}:{}", row.name, zsh_description(row.help))));
    out += "        )\n        _describe command choices ;;\n";
}

std::string zsh_option(const OptionRow &option, std::string_view name)
{
    std::string spec =
        fmt::format("{}{}[{}]", option.repeats ? "*" : "", name, zsh_description(option.help));
    if (option.kind == Kind::file)
        spec += ":file:_files";
    else if (option.kind == Kind::word)
        spec += fmt::format(":value:({})", spaced(option.words));
    else if (takes_value(option))
        spec += ":value: ";
    return fmt::format("            {} \\\n", zsh_quoted(spec));
}

void append_zsh_verb(std::string &out, const Noun &noun, const Verb &verb)
{
    // Noun and verb are skipped as two operands of any kind.
    out += fmt::format("    {})\n        _arguments \\\n",
                       zsh_quoted(fmt::format("{} {}", noun.name, verb.name)));
    each_option(verb, [&](const OptionRow &option) {
        out += zsh_option(option, fmt::format("--{}", option.name));
        if (option.letter)
            out += zsh_option(option, fmt::format("-{}", option.letter));
    });
    std::string operands = verb.operands.kind == Kind::file ? "'*:file:_files'" : "'*: : '";
    std::string settings;
    for (const std::string &word : setting_words(verb))
        settings += " " + word;
    if (!settings.empty())
        operands = fmt::format("'*: :({} )'", settings);
    out += fmt::format("            '1: : ' '2: : ' {} ;;\n", operands);
}

std::string zsh_script()
{
    std::string out(zsh_begin);
    append_zsh_choices(out, "", nouns());
    for (const Noun &noun : nouns()) {
        append_zsh_choices(out, noun.name, noun.verbs);
        for (const Verb &verb : noun.verbs)
            append_zsh_verb(out, noun, verb);
    }
    out += zsh_end;
    return out;
}

// ---- fish ----

constexpr std::string_view fish_begin =
    R"(# Completion of ofpctl for fish; made by "ofpctl completion fish".
function __ofpctl_at
    set -l plain (string match -v -- '-*' (commandline -opc))
    set -l at (string join ' ' -- $plain[2..3])
    test "$at" = "$argv[1]"
end
complete -c ofpctl -f
)";

std::string fish_quoted(std::string_view text) { return quoted(text, "\\'"); }

std::string fish_option(const OptionRow &option)
{
    std::string out = fmt::format(" -l {}", option.name);
    if (option.letter)
        out += fmt::format(" -s {}", option.letter);
    if (option.kind == Kind::file)
        out += " -r -F";
    else if (option.kind == Kind::word)
        out += fmt::format(" -x -a {}", fish_quoted(spaced(option.words)));
    else if (takes_value(option))
        out += " -x";
    return out + fmt::format(" -d {}", fish_quoted(option.help));
}

template <class Row>
void append_fish_choices(std::string &out, std::string_view at, std::span<const Row> rows)
{
    for (const Row &row : rows)
        out += fmt::format("complete -c ofpctl -n '__ofpctl_at \"{}\"' -a {} -d {}\n", at, row.name,
                           fish_quoted(row.help));
}

void append_fish_verb(std::string &out, const Noun &noun, const Verb &verb)
{
    const std::string at =
        fmt::format("complete -c ofpctl -n '__ofpctl_at \"{} {}\"'", noun.name, verb.name);
    each_option(verb, [&](const OptionRow &option) { out += at + fish_option(option) + "\n"; });
    if (verb.operands.kind == Kind::file)
        out += at + " -F\n";
    for (const std::string &word : setting_words(verb))
        out += fmt::format("{} -a {}\n", at, word);
}

std::string fish_script()
{
    std::string out(fish_begin);
    append_fish_choices(out, "", nouns());
    for (const Noun &noun : nouns()) {
        append_fish_choices(out, noun.name, noun.verbs);
        for (const Verb &verb : noun.verbs)
            append_fish_verb(out, noun, verb);
    }
    return out;
}

void print(Context &context, const std::string &script)
{
    if (context.out.json())
        context.out.document().text("script", script);
    else
        context.out.write(script);
}

void print_bash(Context &context) { print(context, bash_script()); }
void print_zsh(Context &context) { print(context, zsh_script()); }
void print_fish(Context &context) { print(context, fish_script()); }

constexpr Example bash_examples[] = {
    {"source <(ofpctl completion bash)", "For this shell"},
};
constexpr Example zsh_examples[] = {
    {"ofpctl completion zsh > _ofpctl", "To be put into a folder of fpath"},
};
constexpr Example fish_examples[] = {
    {"ofpctl completion fish > ofpctl.fish", "To be put into ~/.config/fish/completions"},
};

constexpr Verb rows[] = {
    {.name = "bash",
     .run = print_bash,
     .help = "Prints the completion script for bash.",
     .examples = bash_examples},
    {.name = "zsh",
     .run = print_zsh,
     .help = "Prints the completion script for zsh.",
     .examples = zsh_examples},
    {.name = "fish",
     .run = print_fish,
     .help = "Prints the completion script for fish.",
     .examples = fish_examples},
};

} // namespace

const std::span<const Verb> completion_verbs = rows;

} // namespace ofpctl

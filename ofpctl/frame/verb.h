// The verb table: one row per command. Dispatch, help, completion and the manual page are made of
// it, so that what it says is what there is.
#ifndef OFPCTL_FRAME_VERB_H
#define OFPCTL_FRAME_VERB_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "frame/setting.h"

namespace ofpctl {

struct Context;

enum class Kind {
    none,
    flag,   // takes no value
    number, // least to most, decimal or 0x hexadecimal
    word,   // one of words
    file,   // completed by file names
    text,
};

struct OptionRow {
    std::string_view name; // without the dashes
    char letter = 0;       // 0: no short form
    Kind kind = Kind::flag;
    std::string_view value;    // what it takes, as the help calls it; empty for a flag
    std::string_view help;     // one line
    std::string_view fallback; // the value when it is not given; empty: none
    uint32_t least = 0;
    uint32_t most = 0;
    std::string_view words; // "all|ff"
    bool repeats = false;
};

struct Operands {
    std::string_view form; // as the usage line shows them; empty: none
    Kind kind = Kind::none;
    std::size_t least = 0;
    std::size_t most = 0;
    uint32_t lowest = 0; // of a number
    uint32_t highest = 0;
};

constexpr std::size_t any_number = static_cast<std::size_t>(-1);

struct Example {
    std::string_view command;
    std::string_view purpose;
};

struct Verb {
    std::string_view name;
    void (*run)(Context &);
    std::string_view help;    // one line
    std::string_view details; // what the line leaves out; may be empty
    Operands operands;
    std::span<const OptionRow> options;
    std::span<const Example> examples;
    SettingRows (*settings)() = nullptr; // of NAME=VALUE operands
};

struct Noun {
    std::string_view name;
    std::string_view help; // one line
    std::span<const Verb> verbs;
};

std::span<const Noun> nouns();

// Options of every command.
std::span<const OptionRow> common_options();

const Noun *find_noun(std::string_view name);
const Verb *find_verb(const Noun &noun, std::string_view name);
// Among the verb's options and the common ones; null when there is none.
const OptionRow *find_option(const Verb &verb, std::string_view name);

} // namespace ofpctl

#endif

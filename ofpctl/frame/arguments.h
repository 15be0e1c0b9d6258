// What the command line gave a verb, checked against the verb's row.
#ifndef OFPCTL_FRAME_ARGUMENTS_H
#define OFPCTL_FRAME_ARGUMENTS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/verb.h"

namespace ofpctl {

using Words = std::vector<std::string>;

class Arguments {
public:
    // Asking for an option that the row does not have throws std::out_of_range: a mistake of this
    // program, not of its user.
    bool given(std::string_view option) const { return value(option).given; }
    // The value given, else the row's fallback.
    const std::string &text(std::string_view option) const;
    uint32_t number(std::string_view option) const;
    const Words &all(std::string_view option) const { return value(option).words; }

    const Words &operands() const { return operands_; }

    // Values are checked here; a wrong one throws a usage failure.
    void set(const OptionRow &option, Words words);
    void set_operands(const Operands &row, Words operands);

private:
    struct Value {
        bool given = false;
        Words words;
    };
    const Value &value(std::string_view option) const;

    std::map<std::string, Value, std::less<>> values_;
    Words operands_;
};

// Decimal or 0x hexadecimal within the range; else a usage failure that says what would be right.
uint32_t require_number(std::string_view what, std::string_view text, uint32_t least,
                        uint32_t most);

// The options of every command that stand before the noun, and all that follows them.
struct CommandLine {
    Words common;
    Words rest;
};
CommandLine split_command_line(std::span<const std::string> words);

// The options and operands of one verb; words is what follows it.
Arguments parse_arguments(const Noun &noun, const Verb &verb, const Words &words);

} // namespace ofpctl

#endif

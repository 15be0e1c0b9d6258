// NAME=VALUE operands, read against the settings of a command.
#ifndef OFPCTL_OPTION_ASSIGNMENT_H
#define OFPCTL_OPTION_ASSIGNMENT_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/setting.h"
#include "option/value.h"

namespace ofpctl {

struct Assignment {
    const SettingRow *row;
    Value value;
};

// In the order given. A usage failure for the first that is wrong, with the nearest name or what
// the value may be; the same name twice is wrong, too.
std::vector<Assignment> parse_assignments(std::span<const std::string> words,
                                          const SettingRows &settings);

// The row of that name; null when there is none.
const SettingRow *find_setting(const SettingRows &settings, std::string_view name);
// "no such setting; did you mean echo-interval?"
std::string unknown_setting(const SettingRows &settings, std::string_view name);

// The option that a row belongs to.
template <class Option>
const Option &option_of(std::span<const Option> options, const SettingRow &row)
{
    for (const Option &option : options) {
        if (&option.row == &row)
            return option;
    }
    return options.front(); // rows come from these options
}

} // namespace ofpctl

#endif

// Help texts, made of the verb table.
#ifndef OFPCTL_FRAME_HELP_H
#define OFPCTL_FRAME_HELP_H

#include <string>
#include <string_view>

#include "frame/verb.h"

namespace ofpctl {

std::string program_help();
std::string noun_help(const Noun &noun);
std::string verb_help(const Noun &noun, const Verb &verb);
std::string_view program_version();

// "ofpctl flow load [options] FILE..."
std::string usage(const Noun &noun, const Verb &verb);
// "--client ID" with "-f, " before it where there is a letter.
std::string option_form(const OptionRow &option);
// The help line of an option with its range or words and what holds without it.
std::string option_help(const OptionRow &option);

// "echo-interval=SECONDS", "fail-open=secure|standalone"
std::string setting_form(const SettingRow &row);
// The help line of a setting with its range.
std::string setting_help(const SettingRow &row);

// Text in lines of at most the width, each begun by the indent.
std::string wrap(std::string_view text, std::size_t indent, std::size_t width = 80);

} // namespace ofpctl

#endif

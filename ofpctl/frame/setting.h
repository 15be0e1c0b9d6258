// What a NAME=VALUE operand may be. Checking, help, completion and the manual page are made of it.
#ifndef OFPCTL_FRAME_SETTING_H
#define OFPCTL_FRAME_SETTING_H

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace ofpctl {

enum class ValueForm : uint8_t {
    number,      // least to most
    hex,         // a number shown in hexadecimal
    word,        // one of choices
    text,        // at most so many bytes
    vlans,       // 1-10,20 or none
    vlan_filter, // ID[/MASK][,loose], FIRST-LAST[,loose] or none
    tables,      // ID[:KIND],...
    address,     // IPv4 or IPv6
    ids,         // 1,3 or none: bits of a number
    numbers,     // as many as maxima, with colons between
};

struct Choice {
    std::string_view word;
    uint64_t value;
};

struct SettingRow {
    std::string_view name;
    ValueForm form = ValueForm::number;
    std::string_view value; // what it takes, as the help calls it; empty for a word
    std::string_view help;  // one line
    uint64_t least = 0;
    uint64_t most = 0;                     // of a text its bytes
    std::span<const Choice> choices = {};  // of a word
    std::span<const uint64_t> maxima = {}; // of numbers, each from 0
};

using SettingRows = std::vector<const SettingRow *>;

} // namespace ofpctl

#endif

// The value of a setting: checked, compared, written.
#ifndef OFPCTL_OPTION_VALUE_H
#define OFPCTL_OPTION_VALUE_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "frame/json_writer.h"
#include "frame/setting.h"
#include "option/vlan_set.h"

namespace ofpctl {

struct TableKind {
    uint8_t table;
    uint32_t kind;

    bool operator==(const TableKind &) const = default;
};

// Which VLANs an instance serves.
struct VlanFilter {
    enum class Kind : uint8_t { none, masked, range };

    Kind kind;
    uint16_t a; // masked: the id; range: the first one
    uint16_t b; // masked: the mask; range: the last one
    bool loose;

    bool operator==(const VlanFilter &) const = default;
};

// As a record keeps it: IPv4 in the first four bytes.
struct Address {
    uint16_t type;
    std::array<uint8_t, 16> bytes;

    bool operator==(const Address &) const = default;
};

// Which one goes by the form of the setting; number, hex, word and ids are numbers.
using Value = std::variant<uint64_t, std::string, VlanSet, VlanFilter, std::vector<TableKind>,
                           Address, std::vector<uint64_t>>;

struct BadValue {
    std::string what; // and what would be right
};

std::variant<Value, BadValue> parse_value(const SettingRow &row, std::string_view text);

// What parse_value reads again.
std::string format_value(const SettingRow &row, const Value &value);
// Numbers wider than 32 bits and everything that is no number become strings.
void write_value(JsonWriter &json, const SettingRow &row, const Value &value);

// What a setting takes: "1 to 65535", "secure, standalone".
std::string accepted(const SettingRow &row);

constexpr Choice off_on[] = {{"off", 0}, {"on", 1}};

} // namespace ofpctl

#endif

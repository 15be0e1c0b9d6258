// References in the tables of the rule index: a rule or a node, and its number.
#pragma once

#include <cstdint>

namespace agent {

constexpr uint32_t rule_ref(uint32_t id) { return id << 1; }
constexpr uint32_t node_ref(uint32_t number) { return number << 1 | 1; }
constexpr bool is_rule(uint32_t ref) { return (ref & 1) == 0; }
constexpr uint32_t number_of(uint32_t ref) { return ref >> 1; }

// Small numbers as tags: different ones stay different, and spread over the table.
constexpr uint32_t spread_tag(uint32_t number) { return number * 0x9e3779b1; }

} // namespace agent

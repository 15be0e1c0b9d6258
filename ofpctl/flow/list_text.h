// The fields that are lists: the words of ip_range and the interfaces of batch_if.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "flow/problem.h"

namespace ofpctl {

constexpr std::size_t most_interfaces = 10000;

// "0x0a000001:0x0a0000ff": the first words, the rest are 0.
bool parse_words(std::string_view name, std::string_view text, std::span<uint32_t> words,
                 Problem &problem);
void append_words(std::string &out, std::span<const uint32_t> words);

// "3:17:20-29": interface indexes in this order.
bool parse_interfaces(std::string_view name, std::string_view text,
                      std::vector<uint32_t> &interfaces, Problem &problem);
void append_interfaces(std::string &out, std::span<const uint32_t> interfaces);

} // namespace ofpctl

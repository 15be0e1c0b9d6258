// Words: taken apart, counted, guessed.
#ifndef OFPCTL_FRAME_WORDS_H
#define OFPCTL_FRAME_WORDS_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ofpctl {

std::vector<std::string_view> split(std::string_view text, char separator);

// "1 rule", "2 rules"
std::string counted(std::size_t count, std::string_view thing);

// The candidate nearest to the word; empty when none is near.
std::string_view nearest(std::string_view word, std::span<const std::string_view> candidates);

// "did you mean load?", or else "one of add, load, show".
std::string one_of(std::string_view word, std::span<const std::string_view> candidates);

} // namespace ofpctl

#endif

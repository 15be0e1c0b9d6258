#include "frame/words.h"

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "flow/nearest.h"

namespace ofpctl {

std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(separator), text.size());
        parts.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

std::string counted(std::size_t count, std::string_view thing)
{
    return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

std::string_view nearest(std::string_view word, std::span<const std::string_view> candidates)
{
    if (word.empty())
        return {};
    // The first of equals stays: those that begin alike are offered first.
    Nearest near(word);
    for (const bool alike : {true, false}) {
        for (const std::string_view candidate : candidates) {
            if (candidate.starts_with(word))
                return candidate;
            if (candidate.starts_with(word[0]) == alike)
                near.offer(candidate);
        }
    }
    return near.word();
}

std::string one_of(std::string_view word, std::span<const std::string_view> candidates)
{
    if (const std::string_view meant = nearest(word, candidates); !meant.empty())
        return fmt::format("did you mean {}?", meant);
    return fmt::format("one of {}", fmt::join(candidates, ", "));
}

} // namespace ofpctl

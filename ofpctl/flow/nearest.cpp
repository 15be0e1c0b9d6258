#include "flow/nearest.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace ofpctl {
namespace {

constexpr std::size_t longest_word = 32;

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

} // namespace

std::size_t distance(std::string_view a, std::string_view b)
{
    if (a.size() > longest_word || b.size() > longest_word)
        return std::max(a.size(), b.size());
    using Row = std::array<std::size_t, longest_word + 1>;
    Row before{};
    Row last{};
    Row now{};
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        now[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool same = lower(a[i - 1]) == lower(b[j - 1]);
            now[j] = std::min({last[j] + 1, now[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
                lower(a[i - 2]) == lower(b[j - 1]))
                now[j] = std::min(now[j], before[j - 2] + 1);
        }
        before = last;
        last = now;
    }
    return last[b.size()];
}

} // namespace ofpctl

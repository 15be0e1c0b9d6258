// The word somebody meant.
#pragma once

#include <cstddef>
#include <limits>
#include <string_view>

namespace ofpctl {

// Letters to insert, drop, change or swap with their neighbour to turn a into b; case counts for
// nothing.
std::size_t distance(std::string_view a, std::string_view b);

// Offer it every valid word; what it has at the end is near enough to be worth suggesting, or
// empty.
class Nearest {
public:
    explicit Nearest(std::string_view word) : word_(word) {}

    void offer(std::string_view candidate)
    {
        const std::size_t far = distance(word_, candidate);
        if (far < best_distance_) {
            best_distance_ = far;
            best_ = candidate;
        }
    }
    std::string_view word() const
    {
        return best_distance_ <= (word_.size() + 2) / 3 ? best_ : std::string_view();
    }

private:
    std::string_view word_;
    std::string_view best_;
    std::size_t best_distance_ = std::numeric_limits<std::size_t>::max();
};

} // namespace ofpctl

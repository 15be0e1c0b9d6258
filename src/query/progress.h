// What ends a query whose agent daemon keeps it busy without getting it anywhere.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace ofp {

// Follows the keys of a query that asks again with a key out of the reply. Any circle is noticed,
// by comparing with a key that moves up whenever the way since has doubled.
template <typename Key>
requires std::has_unique_object_representations_v<Key>
class Course {
public:
    explicit Course(const Key &start) : mark_(start) {}

    // False when the keys have come round again.
    [[nodiscard]] bool leads_on(const Key &key)
    {
        if (std::memcmp(&key, &mark_, sizeof key) == 0)
            return false;
        if (++steps_ == reach_) {
            mark_ = key;
            reach_ *= 2;
            steps_ = 0;
        }
        return true;
    }

private:
    Key mark_;
    uint64_t steps_ = 0;
    uint64_t reach_ = 1;
};

// Counts the datagrams of a sequence that bring nothing.
class Patience {
public:
    // False when too many in a row brought nothing.
    [[nodiscard]] bool allows(bool brought_something)
    {
        idle_ = brought_something ? 0 : idle_ + 1;
        return idle_ < 16;
    }

private:
    int idle_ = 0;
};

} // namespace ofp

// What is wrong with a piece of text, found deep in a parser and told to the user by its caller.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace ofpctl {

struct Problem {
    std::string_view where; // a part of the text that was parsed
    std::string message;
    std::string hint;

    // False, so that a parser ends with: return problem.report(...).
    bool report(std::string_view place, std::string what, std::string right = {})
    {
        where = place;
        message = std::move(what);
        hint = std::move(right);
        return false;
    }
};

} // namespace ofpctl

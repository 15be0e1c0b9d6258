// A JSON text as a tree that remembers where each member stands, so that errors can name the place.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "flow/problem.h"

namespace ofpctl {

struct JsonMember;

struct JsonValue {
    enum class Kind { null, boolean, number, string, array, object };

    Kind kind = Kind::null;
    std::string text;                // of a scalar: true, 12, the characters of a string
    std::vector<JsonMember> members; // of an array (without names) or an object, in order
};

struct JsonMember {
    std::string name;
    std::size_t offset = 0; // of the quote before the name; of an element: near its begin
    JsonValue value;
};

// False when text is no JSON; problem.where is then the place in text.
bool parse_json(std::string_view text, JsonValue &value, Problem &problem);

// As a JSON string; what is not printable ASCII is escaped.
void append_json_string(std::string &out, std::string_view text);

} // namespace ofpctl

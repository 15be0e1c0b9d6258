// A configuration file, TOML or JSON, as one kind of tree in which everything has its place.
#ifndef OFPCTL_OPTION_DOCUMENT_H
#define OFPCTL_OPTION_DOCUMENT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ofpctl {

struct DocumentEntry;

struct DocumentNode {
    enum class Kind { scalar, list, table, other };

    Kind kind = Kind::other; // other: what no setting can be, a number with a fraction say
    std::string text;        // of a scalar: on and off for true and false, numbers decimal
    std::vector<DocumentEntry> entries;
    std::size_t line = 1;
    std::size_t column = 1;
};

struct DocumentEntry {
    std::string name; // empty in a list
    DocumentNode node;
    std::size_t line; // of the name
    std::size_t column;
};

struct DocumentError {
    std::size_t line = 1;
    std::size_t column = 1;
    std::string what;
};

// JSON when it begins with a brace. The root is a table.
std::variant<DocumentNode, DocumentError> parse_document(std::string_view text);

} // namespace ofpctl

#endif

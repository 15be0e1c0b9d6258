#include "option/document.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

// The parser asserts what some malformed files break, and with NDEBUG assumes it: here that is an
// error like others.
namespace ofpctl {
struct MalformedToml {};
[[noreturn]] void refuse_toml() { throw MalformedToml{}; }
} // namespace ofpctl
#pragma push_macro("NDEBUG")
#undef NDEBUG
#define TOML_ASSERT(condition) ((condition) ? static_cast<void>(0) : ::ofpctl::refuse_toml())
#define TOML_HEADER_ONLY       1
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")

#include "flow/json_tree.h"

namespace ofpctl {

namespace {

using Kind = DocumentNode::Kind;

// ---- TOML

DocumentNode placed(const toml::node &node)
{
    DocumentNode out;
    out.line = node.source().begin.line;
    out.column = node.source().begin.column;
    return out;
}

DocumentNode from_toml(const toml::node &node)
{
    DocumentNode out = placed(node);
    if (const toml::table *table = node.as_table()) {
        out.kind = Kind::table;
        for (const auto &[key, value] : *table)
            out.entries.push_back({std::string(key.str()), from_toml(value),
                                   key.source().begin.line, key.source().begin.column});
    } else if (const toml::array *array = node.as_array()) {
        out.kind = Kind::list;
        for (const toml::node &element : *array)
            out.entries.push_back({{}, from_toml(element), out.line, out.column});
    } else if (const auto *text = node.as_string()) {
        out.kind = Kind::scalar;
        out.text = text->get();
    } else if (const auto *number = node.as_integer()) {
        out.kind = Kind::scalar;
        out.text = fmt::format("{}", number->get());
    } else if (const auto *flag = node.as_boolean()) {
        out.kind = Kind::scalar;
        out.text = flag->get() ? "on" : "off";
    }
    return out;
}

std::variant<DocumentNode, DocumentError> parse_toml(std::string_view text)
{
    try {
        return from_toml(toml::parse(text));
    } catch (const toml::parse_error &error) {
        const toml::source_position &at = error.source().begin;
        return DocumentError{at.line, at.column, std::string(error.description())};
    } catch (const MalformedToml &) {
        return DocumentError{1, 1, "this is no TOML: a name or a value is malformed"};
    }
}

// ---- JSON

class JsonReader {
public:
    explicit JsonReader(std::string_view text) : text_(text) {}

    DocumentNode node(const JsonValue &value, std::size_t offset)
    {
        DocumentNode out;
        place(offset, out.line, out.column);
        switch (value.kind) {
        case JsonValue::Kind::object:
            out.kind = Kind::table;
            break;
        case JsonValue::Kind::array:
            out.kind = Kind::list;
            break;
        case JsonValue::Kind::boolean:
            out.kind = Kind::scalar;
            out.text = value.text == "true" ? "on" : "off";
            break;
        case JsonValue::Kind::string:
        case JsonValue::Kind::number:
            out.kind = Kind::scalar;
            out.text = value.text;
            break;
        case JsonValue::Kind::null:
            break;
        }
        for (const JsonMember &member : value.members) {
            DocumentNode inner = node(member.value, member.offset);
            out.entries.push_back({member.name, inner, inner.line, inner.column});
        }
        return out;
    }

    void place(std::size_t offset, std::size_t &line, std::size_t &column) const
    {
        const std::string_view before = text_.substr(0, offset);
        line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
        column = before.size() - (before.rfind('\n') + 1) + 1;
    }

private:
    std::string_view text_;
};

std::variant<DocumentNode, DocumentError> parse_json_document(std::string_view text)
{
    JsonReader reader(text);
    JsonValue root;
    Problem problem;
    if (parse_json(text, root, problem))
        return reader.node(root, text.find('{'));
    DocumentError error;
    const auto offset = static_cast<std::size_t>(problem.where.data() - text.data());
    reader.place(std::min(offset, text.size()), error.line, error.column);
    error.what = problem.hint.empty() ? problem.message
                                      : fmt::format("{}; {}", problem.message, problem.hint);
    return error;
}

} // namespace

std::variant<DocumentNode, DocumentError> parse_document(std::string_view text)
{
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    return start != text.npos && text[start] == '{' ? parse_json_document(text) : parse_toml(text);
}

} // namespace ofpctl

#include "flow/json_tree.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace ofpctl {
namespace {

constexpr std::size_t deepest = 16;

// Walks the text and tells how far the parser has read.
class Cursor {
public:
    using difference_type = std::ptrdiff_t;
    using value_type = char;
    using pointer = const char *;
    using reference = const char &;
    using iterator_category = std::input_iterator_tag;

    Cursor(const char *at, const char **reached) : at_(at), reached_(reached) {}
    reference operator*() const { return *at_; }
    Cursor &operator++()
    {
        *reached_ = ++at_;
        return *this;
    }
    Cursor operator++(int)
    {
        const Cursor before = *this;
        ++*this;
        return before;
    }
    bool operator==(const Cursor &other) const { return at_ == other.at_; }

private:
    const char *at_;
    const char **reached_;
};

class Builder : public nlohmann::json_sax<nlohmann::json> {
public:
    Builder(std::string_view text, const char *&reached, JsonValue &root, Problem &problem)
        : text_(text), reached_(reached), root_(root), problem_(problem)
    {}

    bool null() override { return scalar(JsonValue::Kind::null, "null"); }
    bool boolean(bool value) override
    {
        return scalar(JsonValue::Kind::boolean, value ? "true" : "false");
    }
    bool number_integer(number_integer_t value) override
    {
        return scalar(JsonValue::Kind::number, std::to_string(value));
    }
    bool number_unsigned(number_unsigned_t value) override
    {
        return scalar(JsonValue::Kind::number, std::to_string(value));
    }
    bool number_float(number_float_t, const string_t &digits) override
    {
        return scalar(JsonValue::Kind::number, digits);
    }
    bool string(string_t &value) override
    {
        return scalar(JsonValue::Kind::string, std::move(value));
    }
    bool binary(binary_t &) override { return false; }
    bool start_object(std::size_t) override { return open(JsonValue::Kind::object); }
    bool start_array(std::size_t) override { return open(JsonValue::Kind::array); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }
    bool key(string_t &name) override;
    bool parse_error(std::size_t position, const std::string &,
                     const nlohmann::detail::exception &error) override;

private:
    std::size_t position() const { return static_cast<std::size_t>(reached_ - text_.data()); }
    bool scalar(JsonValue::Kind kind, std::string text);
    bool open(JsonValue::Kind kind);
    bool close();
    JsonValue &slot(JsonValue::Kind kind, std::size_t length);

    std::string_view text_;
    const char *&reached_;
    JsonValue &root_;
    Problem &problem_;
    std::vector<JsonValue *> open_;
};

// Where the next value goes; the parser has read length characters of it and behind it.
JsonValue &Builder::slot(JsonValue::Kind kind, std::size_t length)
{
    JsonValue *place = &root_;
    if (!open_.empty()) {
        JsonValue &parent = *open_.back();
        if (parent.kind == JsonValue::Kind::array)
            parent.members.push_back({{}, position() - std::min(length, position()), {}});
        place = &parent.members.back().value;
    }
    place->kind = kind;
    return *place;
}

bool Builder::scalar(JsonValue::Kind kind, std::string text)
{
    // A string has quotes around it; that a number ends shows only behind it.
    const std::size_t around = kind == JsonValue::Kind::string   ? 2
                               : kind == JsonValue::Kind::number ? 1
                                                                 : 0;
    slot(kind, text.size() + around).text = std::move(text);
    return true;
}

// A container keeps its place in memory while it is open: only the innermost one grows.
bool Builder::open(JsonValue::Kind kind)
{
    if (open_.size() == deepest)
        return problem_.report(text_.substr(position() - 1, 1), "nested too deeply");
    open_.push_back(&slot(kind, 1));
    return true;
}

bool Builder::close()
{
    open_.pop_back();
    return true;
}

bool Builder::key(string_t &name)
{
    // The parser has just read the closing quote; a name with escapes is longer in the text.
    const std::size_t end = position();
    const std::size_t length = name.size() + 2;
    const std::size_t begin = length <= end && text_[end - length] == '"'
                                  ? end - length
                                  : std::max<std::size_t>(end, 1) - 1;
    open_.back()->members.push_back({std::move(name), begin, {}});
    return true;
}

// "[json.exception.parse_error.101] parse error at line 1, column 9: syntax error while ...".
std::string reason(const char *what)
{
    const std::string_view text = what;
    const auto colon = text.find(": ");
    return std::string(colon == text.npos ? text : text.substr(colon + 2));
}

bool Builder::parse_error(std::size_t position, const std::string &,
                          const nlohmann::detail::exception &error)
{
    const std::size_t at = std::min(position > 0 ? position - 1 : 0, text_.size());
    return problem_.report(text_.substr(at, 1), "this is no JSON: " + reason(error.what()));
}

} // namespace

bool parse_json(std::string_view text, JsonValue &value, Problem &problem)
{
    const char *reached = text.data();
    const char *ignored = nullptr;
    value = {};
    Builder builder(text, reached, value, problem);
    return nlohmann::json::sax_parse(Cursor(text.data(), &reached),
                                     Cursor(text.data() + text.size(), &ignored), &builder);
}

void append_json_string(std::string &out, std::string_view text)
{
    out += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        if (c >= ' ' && c <= '~')
            out += c;
        else
            out += fmt::format("\\u{:04x}", static_cast<unsigned char>(c));
    }
    out += '"';
}

} // namespace ofpctl

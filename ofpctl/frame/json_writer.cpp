#include "frame/json_writer.h"

#include <iterator>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace ofpctl {

namespace {

// Names of files and the like need not be UTF-8; the document is, whatever they hold.
std::string quoted(std::string_view text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace

void JsonWriter::place(std::string_view key)
{
    if (!first_)
        *out_ += ',';
    first_ = false;
    if (!key.empty()) {
        *out_ += quoted(key);
        *out_ += ':';
    }
}

void JsonWriter::begin(std::string_view key, char open, char close)
{
    place(key);
    *out_ += open;
    open_ += close;
    first_ = true;
}

void JsonWriter::end()
{
    *out_ += open_.back();
    open_.pop_back();
    first_ = false;
}

void JsonWriter::end_all()
{
    while (depth() > 1)
        end();
}

void JsonWriter::text(std::string_view key, std::string_view value) { raw(key, quoted(value)); }

void JsonWriter::number(std::string_view key, int64_t value)
{
    place(key);
    fmt::format_to(std::back_inserter(*out_), "{}", value);
}

void JsonWriter::wide(std::string_view key, uint64_t value)
{
    place(key);
    fmt::format_to(std::back_inserter(*out_), "\"{}\"", value);
}

void JsonWriter::flag(std::string_view key, bool value) { raw(key, value ? "true" : "false"); }

void JsonWriter::null(std::string_view key) { raw(key, "null"); }

void JsonWriter::raw(std::string_view key, std::string_view json)
{
    place(key);
    *out_ += json;
}

} // namespace ofpctl

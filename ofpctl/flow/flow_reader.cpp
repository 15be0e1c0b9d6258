#include "flow/flow_reader.h"

#include <algorithm>
#include <cstring>

#include <fmt/format.h>

#include "flow/flow_json.h"
#include "flow/json_tree.h"

namespace ofpctl {
namespace {

constexpr std::size_t shown_width = 100; // characters of a line that an error shows
constexpr std::string_view blanks = " \t\r\n";

bool is_blank(std::string_view line)
{
    const auto first = line.find_first_not_of(blanks);
    return first == line.npos || line[first] == '#';
}

// ---- Errors ----

// What can be printed without moving the caret or the terminal.
std::string printable(std::string_view text)
{
    std::string out(text);
    for (char &c : out)
        c = c == '\t' ? ' ' : static_cast<unsigned char>(c) < ' ' || c == 0x7f ? '?' : c;
    return out;
}

// The part of a long line that shows the column, and how far it is moved.
std::string_view window(std::string_view text, std::size_t column, std::size_t &moved)
{
    moved = column > shown_width * 3 / 4 ? column - shown_width / 2 : 0;
    if (text.size() <= shown_width)
        moved = 0;
    moved = std::min(moved, text.size());
    return text.substr(moved, shown_width);
}

void append_caret(std::string &out, const TextError &what, std::string_view text)
{
    std::size_t moved;
    const auto shown = window(text, what.column, moved);
    const std::size_t column = std::min(what.column - moved, shown.size() + 1);
    const std::size_t room = shown.size() + 1 - column;
    const std::size_t length =
        std::clamp<std::size_t>(what.length, 1, std::max<std::size_t>(room, 1));
    out += fmt::format("\n  {}\n  {:>{}}{:~>{}}", printable(shown), '^', column, "", length - 1);
}

} // namespace

std::string render(const SourceError &error)
{
    std::string out = error.line == 0 ? fmt::format("{}: {}", error.file, to_string(error.what))
                                      : fmt::format("{}:{}:{}: {}", error.file, error.line,
                                                    error.what.column, to_string(error.what));
    if (error.line != 0 && !error.text.empty())
        append_caret(out, error.what, error.text);
    return out;
}

// ---- Files ----

namespace {

struct Place {
    std::size_t line;
    std::size_t column;
    std::string_view text;
};

Place find_place(std::string_view document, std::size_t column)
{
    const std::size_t offset = std::min(column - 1, document.size());
    const auto before = document.substr(0, offset);
    const auto line_begin = before.rfind('\n') + 1; // 0 when there is none
    const auto line_end = std::min(document.find('\n', offset), document.size());
    return {static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1,
            offset - line_begin + 1, document.substr(line_begin, line_end - line_begin)};
}

class Loader {
public:
    Loader(int descriptor, std::string_view name, const LoadOptions &options, FlowSet &flows)
        : reader_(descriptor), name_(name), options_(options), flows_(flows)
    {}

    std::vector<SourceError> load();

private:
    bool next(std::string_view &line);
    bool is_full() const { return errors_.size() >= options_.most_errors; }
    void report(std::size_t line, TextError what, std::string_view text);
    void add_text(std::string_view line);
    void add_json(std::string_view text, std::size_t first_line);
    void load_document(std::string_view first);
    void load_lines(std::string_view line, bool json);

    LineReader reader_;
    std::string name_;
    const LoadOptions &options_;
    FlowSet &flows_;
    std::vector<SourceError> errors_;
};

void Loader::report(std::size_t line, TextError what, std::string_view text)
{
    errors_.push_back({name_, line, std::move(what), std::string(text.substr(0, longest_line))});
}

// The next line that can be read; lines that cannot are errors.
bool Loader::next(std::string_view &line)
{
    while (!is_full()) {
        switch (reader_.next(line)) {
        case LineReader::Status::line:
            return true;
        case LineReader::Status::end:
            return false;
        case LineReader::Status::too_long:
            report(reader_.number(), {1, 0, "the line is longer than 1 MiB", {}}, line);
            break;
        case LineReader::Status::zero_byte:
            report(reader_.number(), {line.find('\0') + 1, 1, "the line holds a zero byte", {}},
                   line);
            break;
        case LineReader::Status::read_failed:
            report(0, {1, 0, std::strerror(reader_.error()), {}}, {});
            return false;
        }
    }
    return false;
}

void Loader::add_text(std::string_view line)
{
    const auto number = static_cast<uint32_t>(reader_.number());
    if (auto error = flows_.add_text(line, options_.mode, number))
        report(number, std::move(*error), line);
}

// A text that begins on the given line of the file.
void Loader::add_json(std::string_view text, std::size_t first_line)
{
    const auto most = options_.most_errors - errors_.size();
    for (TextError &error :
         parse_flows_json(text, options_.mode, most, flows_, static_cast<uint32_t>(first_line))) {
        const Place place = find_place(text, error.column);
        error.column = place.column;
        report(first_line - 1 + place.line, std::move(error), place.text);
    }
}

// One JSON text over all lines.
void Loader::load_document(std::string_view first)
{
    const std::size_t first_line = reader_.number();
    std::string document(first);
    for (std::string_view line; next(line);) {
        document += '\n';
        document += line;
    }
    if (errors_.empty())
        add_json(document, first_line);
}

void Loader::load_lines(std::string_view line, bool json)
{
    do {
        if (is_blank(line))
            continue;
        if (json)
            add_json(line, reader_.number());
        else
            add_text(line);
    } while (next(line));
}

bool is_whole_json(std::string_view text)
{
    JsonValue value;
    Problem problem;
    return parse_json(text, value, problem);
}

std::vector<SourceError> Loader::load()
{
    std::string_view line;
    bool more = next(line);
    while (more && is_blank(line))
        more = next(line);
    if (!more)
        return std::move(errors_);
    const char first = line[line.find_first_not_of(blanks)];
    const bool json = options_.format == FlowFormat::json ||
                      (options_.format == FlowFormat::automatic && (first == '{' || first == '['));
    if (json && !is_whole_json(line))
        load_document(line);
    else
        load_lines(line, json);
    return std::move(errors_);
}

} // namespace

std::vector<SourceError> load_flows(int descriptor, std::string_view name,
                                    const LoadOptions &options, FlowSet &flows)
{
    return Loader(descriptor, name, options, flows).load();
}

} // namespace ofpctl

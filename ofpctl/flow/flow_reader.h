// Flow rules from files: lines of text, JSON, or JSON lines, with errors that name file, line and
// column.
#ifndef OFPCTL_FLOW_READER_H
#define OFPCTL_FLOW_READER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "flow/flow_set.h"
#include "flow/flow_text.h"

namespace ofpctl {

constexpr std::size_t longest_line = std::size_t{1} << 20;

// Reads a descriptor line by line; the descriptor stays the caller's.
class LineReader {
public:
    explicit LineReader(int descriptor) : descriptor_(descriptor) {}

    enum class Status { line, end, too_long, zero_byte, read_failed };

    // The line without its end (LF or CR LF); valid until the next call. A line that is too long
    // or holds a zero byte is skipped, its first bytes are in line.
    Status next(std::string_view &line);
    std::size_t number() const { return number_; } // of the line just read, from 1
    int error() const { return error_; }           // errno after read_failed

private:
    Status take(std::string_view &line, std::size_t length, std::size_t step);
    bool fill();

    int descriptor_;
    int error_ = 0;
    std::size_t number_ = 0;
    std::vector<char> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    bool at_end_ = false;
};

struct SourceError {
    std::string file;
    std::size_t line = 0; // 0: the file as a whole
    TextError what;
    std::string text; // the line
};

// "file:line:column: what is wrong, what would be right", the line, a caret below it.
std::string render(const SourceError &error);

enum class FlowFormat { automatic, text, json };

struct LoadOptions {
    ParseMode mode = ParseMode::program;
    FlowFormat format = FlowFormat::automatic; // automatic: JSON when it begins with { or [
    std::size_t most_errors = 20;              // reading stops there
};

// Appends every rule of the input to flows. Any error means the input must not be used.
std::vector<SourceError> load_flows(int descriptor, std::string_view name,
                                    const LoadOptions &options, FlowSet &flows);

} // namespace ofpctl

#endif

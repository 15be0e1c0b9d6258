// Lines of a file descriptor.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

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
    Status skip(std::string_view &line);
    Status take(std::string_view &line, std::size_t length, std::size_t step);
    bool fill();

    int descriptor_;
    int error_ = 0;
    std::size_t number_ = 0;
    std::vector<char> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    bool at_end_ = false;
    std::string head_; // of a line that was skipped
};

} // namespace ofpctl

#include "flow/line_reader.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace ofpctl {
namespace {

constexpr std::size_t read_size = std::size_t{1} << 16;
constexpr std::size_t kept_of_long_line = 100;

} // namespace

// Appends what the descriptor has; false at its end or on an error.
bool LineReader::fill()
{
    if (begin_ > 0) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    if (buffer_.size() < end_ + read_size)
        buffer_.resize(end_ + read_size);
    // A signal that this program handles is the user's wish to stop: EINTR ends the reading.
    const ssize_t count = ::read(descriptor_, buffer_.data() + end_, buffer_.size() - end_);
    if (count < 0)
        error_ = errno;
    if (count <= 0)
        at_end_ = true;
    else
        end_ += static_cast<std::size_t>(count);
    return count > 0;
}

LineReader::Status LineReader::take(std::string_view &line, std::size_t length, std::size_t step)
{
    ++number_;
    line = {buffer_.data() + begin_, length};
    begin_ += step;
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    if (line.size() > longest_line)
        return Status::too_long;
    return line.find('\0') == line.npos ? Status::line : Status::zero_byte;
}

// Skips the rest of a line that does not fit and keeps its first bytes.
LineReader::Status LineReader::skip(std::string_view &line)
{
    head_.assign(buffer_.data() + begin_, kept_of_long_line);
    ++number_;
    while (true) {
        const void *found = std::memchr(buffer_.data() + begin_, '\n', end_ - begin_);
        if (found != nullptr) {
            begin_ =
                static_cast<std::size_t>(static_cast<const char *>(found) - buffer_.data()) + 1;
            break;
        }
        begin_ = end_;
        if (!fill())
            break;
    }
    line = head_;
    return Status::too_long;
}

LineReader::Status LineReader::next(std::string_view &line)
{
    std::size_t searched = 0; // bytes without a line end
    while (true) {
        const char *from = buffer_.data() + begin_ + searched;
        const std::size_t count = end_ - begin_ - searched;
        const void *found = count == 0 ? nullptr : std::memchr(from, '\n', count);
        if (found != nullptr) {
            const auto length =
                searched + static_cast<std::size_t>(static_cast<const char *>(found) - from);
            return take(line, length, length + 1);
        }
        searched += count;
        if (searched > longest_line + 1)
            return skip(line);
        if (at_end_ || !fill())
            break;
    }
    if (error_ != 0)
        return Status::read_failed;
    const std::size_t rest = end_ - begin_;
    return rest == 0 ? Status::end : take(line, rest, rest);
}

} // namespace ofpctl

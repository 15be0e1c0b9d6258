#include "frame/output.h"

#include <cerrno>
#include <cstddef>
#include <cstring>

#include <fmt/format.h>
#include <unistd.h>

namespace ofpctl {

namespace {

constexpr std::size_t gather = std::size_t{64} << 10;
constexpr std::chrono::milliseconds longest_gathering{100};

} // namespace

void Output::flush()
{
    std::string_view rest = buffer_;
    while (!rest.empty() && !broken_) {
        const ssize_t taken = ::write(descriptor_, rest.data(), rest.size());
        if (taken > 0) {
            rest.remove_prefix(static_cast<std::size_t>(taken));
        } else if (taken == 0 || errno != EINTR) {
            broken_ = true;
            const int error = taken == 0 ? ENOSPC : errno;
            buffer_.clear();
            throw Failure{.message = fmt::format("standard output: {}", std::strerror(error))};
        }
    }
    buffer_.clear();
    flushed_ = Clock::now();
}

// What comes slowly is shown as it comes, what comes fast in large pieces.
void Output::settle()
{
    if (buffer_.size() >= gather || Clock::now() - flushed_ >= longest_gathering)
        flush();
}

void Output::write(std::string_view text)
{
    buffer_ += text;
    settle();
}

void Output::line(std::string_view text)
{
    buffer_ += text;
    write("\n");
}

JsonWriter &Output::document()
{
    if (writer_.depth() == 0) {
        writer_.begin_object();
        writer_.text("schema", "ofpctl/1");
    }
    return writer_;
}

void Output::end_document(const Failure *failure)
{
    JsonWriter &json = document();
    json.end_all();
    json.flag("ok", failure == nullptr);
    if (failure) {
        json.begin_object("error");
        if (failure->code != 0)
            json.text("code", result_number(failure->code));
        else
            json.null("code");
        json.text("name", failure_name(*failure));
        json.text("message", failure->message);
        json.number("status", failure->status);
        json.end();
    }
    json.end();
    buffer_ += '\n';
}

void Output::end_round()
{
    if (json_) {
        end_document(nullptr);
        writer_ = JsonWriter(buffer_);
    }
    flush();
}

void Output::finish(const Failure *failure)
{
    if (json_)
        end_document(failure);
    flush();
}

} // namespace ofpctl

#include "frame/progress.h"

#include <cstdio>
#include <string>

#include <fmt/format.h>

#include "frame/message.h"

namespace ofpctl {

namespace {

constexpr std::chrono::milliseconds patience{500}; // shorter work shows no bar
constexpr std::chrono::milliseconds interval{100};
constexpr std::size_t width = 30;

} // namespace

Progress::Progress(std::string_view work, std::size_t total)
    : work_(work), total_(total), wanted_(terminal()), next_(Clock::now() + patience)
{}

void Progress::at(std::size_t done)
{
    if (!wanted_ || Clock::now() < next_)
        return;
    next_ = Clock::now() + interval;
    drawn_ = true;
    std::string bar = fmt::format("\r{} {}", work_, done);
    if (total_ > 0) {
        const std::size_t full = width * done / total_;
        bar += fmt::format(" of {} [{:#<{}}{:.<{}}] {}%", total_, "", full, "", width - full,
                           100 * done / total_);
    }
    std::fputs(bar.c_str(), stderr);
    std::fflush(stderr);
}

Progress::~Progress()
{
    if (drawn_)
        std::fputs("\r\033[K", stderr);
}

} // namespace ofpctl

#include "frame/progress.h"

#include <algorithm>
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

Progress::Progress(std::string_view work, std::size_t total, bool wanted)
    : work_(work), total_(total), wanted_(wanted && terminal()), next_(Clock::now() + patience)
{}

void Progress::at(std::size_t done)
{
    if (!wanted_ || done == 0 || Clock::now() < next_)
        return;
    next_ = Clock::now() + interval;
    drawn_ = true;
    // The total is what it was at the beginning; it may have grown.
    const std::size_t total = std::max(total_, done);
    const std::size_t full = width * done / total;
    const std::string bar = fmt::format("\r{} {} of {} [{:#<{}}{:.<{}}] {}%", work_, done, total,
                                        "", full, "", width - full, 100 * done / total);
    std::fputs(bar.c_str(), stderr);
    std::fflush(stderr);
}

Progress::~Progress()
{
    if (drawn_)
        std::fputs("\r\033[K", stderr);
}

} // namespace ofpctl

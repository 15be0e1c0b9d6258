// A progress bar on standard error, when that is a terminal and the work lasts.
#ifndef OFPCTL_FRAME_PROGRESS_H
#define OFPCTL_FRAME_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string_view>

namespace ofpctl {

class Progress {
public:
    // wanted false: the terminal shows something else.
    Progress(std::string_view work, std::size_t total, bool wanted = true);
    ~Progress(); // wipes the bar
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void at(std::size_t done);

private:
    using Clock = std::chrono::steady_clock;

    std::string_view work_;
    std::size_t total_;
    bool wanted_;
    bool drawn_ = false;
    Clock::time_point next_;
};

} // namespace ofpctl

#endif

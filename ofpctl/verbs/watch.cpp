#include "verbs/watch.h"

#include <chrono>

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <poll.h>

#include "frame/interrupt.h"

namespace ofpctl {

namespace {

using Clock = std::chrono::steady_clock;

// Throws when a signal comes.
void wait_until(Clock::time_point when)
{
    for (;;) {
        check_interrupt();
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(when - Clock::now());
        if (left.count() <= 0)
            return;
        pollfd signal{signal_descriptor(), POLLIN, 0};
        if (poll(&signal, 1, static_cast<int>(left.count())) > 0)
            drain_signals();
    }
}

} // namespace

void watch(Context &context, void (*show)(Context &))
{
    if (!context.arguments.given("watch")) {
        show(context);
        return;
    }
    const std::chrono::seconds pause(context.arguments.number("watch"));
    const uint32_t rounds =
        context.arguments.given("rounds") ? context.arguments.number("rounds") : UINT32_MAX;
    Clock::time_point when = Clock::now();
    for (uint32_t round = 1;; round++) {
        if (!context.out.json())
            context.out.line(fmt::format("-- {:%H:%M:%S}", fmt::localtime(std::time(nullptr))));
        show(context);
        if (round == rounds)
            return;
        context.out.end_round();
        when += pause;
        wait_until(when);
    }
}

} // namespace ofpctl

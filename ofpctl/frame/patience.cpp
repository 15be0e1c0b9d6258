#include "frame/patience.h"

#include <cerrno>
#include <chrono>
#include <cstring>

#include <poll.h>

#include "frame/interrupt.h"
#include "frame/platform_call.h"
#include "frame/rehearsal.h"
#include "ofp/platform.h"

namespace ofpctl {

namespace {

uint32_t longest_wait = 30;
Wait last = Wait::none;
bool result_came = false;

constexpr int32_t do_not_wait = 0x40;
constexpr int32_t option_level = 1;
constexpr int32_t send_time_out = 0x1005;

struct TimeOut {
    int64_t seconds;
    int64_t microseconds;
};

bool give_up(Wait why, int error)
{
    last = why;
    errno = error;
    return false;
}

bool wait_readable(int descriptor)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(longest_wait);
    for (;;) {
        if (hurried())
            return give_up(Wait::interrupted, ECANCELED);
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0)
            return give_up(Wait::timed_out, EAGAIN);
        pollfd ready[2] = {{descriptor, POLLIN, 0}, {signal_descriptor(), POLLIN, 0}};
        const int count = poll(ready, 2, static_cast<int>(left.count()));
        if (count < 0 && errno != EINTR)
            return give_up(Wait::hung_up, errno);
        if (count <= 0)
            continue;
        if (ready[1].revents != 0)
            drain_signals();
        if (ready[0].revents != 0)
            return true;
    }
}

bool would_wait(int64_t received) { return received < 0 && (errno == EAGAIN || errno == EINTR); }

// The head of a result reply: a message head with that code, then a result code.
bool is_result(const uint8_t *reply, int64_t length)
{
    constexpr uint8_t head[] = {0x00, 0x01, 0x00, 0x04, 0x20, 0x00,
                                0x00, 0x01, 0x00, 0x02, 0x00, 0x04};
    return length >= static_cast<int64_t>(sizeof head + sizeof(uint32_t)) &&
           std::memcmp(reply, head, sizeof head) == 0;
}

void note_reply(const void *reply, int64_t length)
{
    result_came = is_result(static_cast<const uint8_t *>(reply), length);
}

int64_t receive(int32_t s, void *buffer, size_t size, int32_t flags)
{
    if (rehearsing())
        return rehearsed_reply(buffer, size);
    static const auto forward = platform_call<decltype(SOCK_Recv)>("SOCK_Recv");
    // Most answers of a bulk load are there already: one call, no poll.
    int64_t received = forward(s, buffer, size, flags | do_not_wait);
    while (would_wait(received) && (flags & do_not_wait) == 0) {
        if (!wait_readable(s))
            return -1;
        received = forward(s, buffer, size, flags | do_not_wait);
    }
    last = received > 0 ? Wait::answered : Wait::hung_up;
    note_reply(buffer, received);
    return received;
}

} // namespace

void set_patience(uint32_t seconds) { longest_wait = seconds; }
uint32_t patience() { return longest_wait; }
Wait last_wait() { return last; }
bool result_arrived() { return result_came; }

void forget_waits()
{
    last = Wait::none;
    result_came = false;
}

} // namespace ofpctl

extern "C" __attribute__((visibility("default"))) int64_t SOCK_Recv(int32_t s, void *buffer,
                                                                    size_t size, int32_t flags)
{
    return ofpctl::receive(s, buffer, size, flags);
}

extern "C" __attribute__((visibility("default"))) int32_t
SOCK_Connect(int32_t s, const void *address, uint32_t length)
{
    using namespace ofpctl;
    if (rehearsing())
        return 0;
    static const auto forward = platform_call<decltype(SOCK_Connect)>("SOCK_Connect");
    // Bounds connecting and sending; receiving never waits in the platform.
    const TimeOut limit{patience(), 0};
    SOCK_SetOption(s, option_level, send_time_out, &limit, sizeof limit);
    return forward(s, address, length);
}

#include "system.h"

#include <cerrno>
#include <cstdlib>
#include <ctime>

#include <unistd.h>

namespace host {

const char *environment(const char *name)
{
    const char *value = secure_getenv(name);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

namespace {

int64_t nanoseconds(const timespec &time)
{
    return time.tv_sec * nanoseconds_per_second + time.tv_nsec;
}

} // namespace

int64_t monotonic_now()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return nanoseconds(now);
}

int64_t monotonic_tick()
{
    timespec tick{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &tick);
    return nanoseconds(tick);
}

int64_t tick_length()
{
    timespec length{};
    clock_getres(CLOCK_MONOTONIC_COARSE, &length);
    return nanoseconds(length);
}

void sleep_milliseconds(int64_t count)
{
    timespec pause{.tv_sec = count / 1000, .tv_nsec = count % 1000 * nanoseconds_per_millisecond};
    nanosleep(&pause, nullptr);
}

void Descriptor::reset(int fd)
{
    if (fd_ >= 0) {
        int saved = errno;
        close(fd_);
        errno = saved;
    }
    fd_ = fd;
}

} // namespace host

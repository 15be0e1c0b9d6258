/* What several files need of the system: environment, monotonic time, owned descriptors. */
#ifndef OFP_PLATFORM_HOST_SYSTEM_H
#define OFP_PLATFORM_HOST_SYSTEM_H

#include <cstdint>
#include <utility>

namespace host {

constexpr int64_t nanoseconds_per_second = 1'000'000'000;
constexpr int64_t nanoseconds_per_millisecond = 1'000'000;

/* Null when the variable is unset or empty, or must not be trusted (set-user-id programs). */
const char *environment(const char *name);

int64_t monotonic_now();  /* nanoseconds */
int64_t monotonic_tick(); /* the same at the last tick: much cheaper, up to a tick behind */
int64_t tick_length();

void sleep_milliseconds(int64_t count);

class Descriptor {
public:
    explicit Descriptor(int fd = -1) : fd_(fd) {}
    Descriptor(Descriptor &&other) noexcept : fd_(other.release()) {}
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        reset(other.release());
        return *this;
    }
    ~Descriptor() { reset(); }

    int get() const { return fd_; }
    int release() { return std::exchange(fd_, -1); }
    void reset(int fd = -1);
    explicit operator bool() const { return fd_ >= 0; }

private:
    int fd_;
};

} // namespace host

#endif

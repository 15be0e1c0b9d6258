/*
 * The service's datagram sockets, carried by AF_UNIX sequenced packets: message boundaries, flow
 * control per client, and a dead agent noticed at once.
 *
 * The kernel bounds each call by the socket's time-out. Only when a signal interrupts one is the
 * rest of its time worked out and waited for here: a call takes one time-out from its beginning,
 * however many signals arrive, and EINTR never reaches the caller.
 */
#include <cerrno>
#include <cstring>
#include <ctime>

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include "error.h"
#include "ofp/platform.h"
#include "runtime.h"
#include "system.h"
#include "trace.h"

namespace host {

namespace {

constexpr int32_t service_family = 37;
constexpr int32_t datagram_type = 2;
constexpr int32_t service_protocol = 1;

struct ServiceAddress {
    uint8_t length;
    uint8_t family;
    uint8_t port[2]; /* network order */
    uint8_t reserved[12];
};
static_assert(sizeof(ServiceAddress) == 16);

constexpr uint8_t service_port[2] = {0x04, 0x92};

struct TimeValue {
    int64_t seconds;
    int64_t microseconds;
};

struct Option {
    int32_t level;
    int32_t number;
    uint32_t length;
    int host; /* option of SOL_SOCKET, or 0: accepted without effect */
};

constexpr Option options[] = {
    {1, 0x1002, sizeof(int32_t), SO_RCVBUF},
    {1, 0x1005, sizeof(TimeValue), SO_SNDTIMEO},
    {1, 0x1006, sizeof(TimeValue), SO_RCVTIMEO},
    {0x113, 16, sizeof(uint32_t), 0}, /* device context: the host has one only */
};

int32_t reject(int code)
{
    errno = code;
    return -1;
}

timeval read_time(const void *value)
{
    TimeValue time;
    memcpy(&time, value, sizeof time);
    return {.tv_sec = static_cast<time_t>(time.seconds),
            .tv_usec = static_cast<suseconds_t>(time.microseconds)};
}

timeval time_out_of(int32_t s, int option)
{
    timeval limit{};
    socklen_t length = sizeof limit;
    return getsockopt(s, SOL_SOCKET, option, &limit, &length) == 0 ? limit : timeval{};
}

/* Nanoseconds that a time-out leaves of a call that began at start; -1 without limit. */
int64_t time_left(const timeval &limit, int64_t start)
{
    constexpr time_t unlimited = 5'000'000'000; /* seconds: more overflows when added to a time */
    if ((limit.tv_sec == 0 && limit.tv_usec == 0) || limit.tv_sec > unlimited) {
        return -1;
    }
    int64_t end = start + limit.tv_sec * nanoseconds_per_second + limit.tv_usec * 1000;
    int64_t now = monotonic_now();
    return now < end ? end - now : 0;
}

/* Waits for the rest of an interrupted call's time. False, with errno, when that is used up. */
bool wait_on(int32_t s, int16_t event, int64_t left)
{
    pollfd wanted{.fd = s, .events = event, .revents = 0};
    timespec rest{.tv_sec = left / nanoseconds_per_second,
                  .tv_nsec = left % nanoseconds_per_second};
    int ready = ppoll(&wanted, 1, left < 0 ? nullptr : &rest, nullptr);
    if (ready == 0) {
        errno = EAGAIN;
    }
    return ready > 0 || (ready < 0 && errno == EINTR);
}

/* Repeats a send or receive call that signals interrupt, all within the time-out of one. */
template <class Call>
int64_t within_time_out(int32_t s, int time_out, int16_t event, int32_t flags, Call call)
{
    int64_t start = monotonic_tick();
    int64_t count = call(flags);
    if (count >= 0 || errno != EINTR) {
        return count;
    }
    start += tick_length(); /* never before it began */
    bool waits = (flags & MSG_DONTWAIT) == 0;
    timeval limit = time_out_of(s, time_out);
    do {
        if (!wait_on(s, event, waits ? time_left(limit, start) : 0)) {
            return -1;
        }
        count = call(flags | MSG_DONTWAIT);
        /* EAGAIN: a signal ended the wait, or another reader was faster. */
    } while (count < 0 && (errno == EINTR || (waits && errno == EAGAIN)));
    return count;
}

/* An agent's socket has a name, so an empty datagram has a sender while a hang-up has none. Only
 * the length of the name is asked for. When an agent dies with requests unread, one reset precedes
 * the answers that it had sent. */
int64_t receive_once(int32_t s, void *buffer, size_t size, int32_t flags)
{
    sockaddr sender;
    socklen_t length;
    int64_t count;
    do {
        length = 0;
        count = recvfrom(s, buffer, size, flags, &sender, &length);
    } while (count < 0 && errno == ECONNRESET);
    return count == 0 && length == 0 ? reject(ECONNRESET) : count;
}

int64_t receive(int32_t s, void *buffer, size_t size, int32_t flags)
{
    int64_t count = within_time_out(s, SO_RCVTIMEO, POLLIN, flags, [=](int32_t now) {
        return receive_once(s, buffer, size, now);
    });
    if (count >= 0 && tracing() && (flags & MSG_PEEK) == 0) {
        size_t length = static_cast<size_t>(count);
        trace(Direction::received, s, buffer, length < size ? length : size);
    }
    return count;
}

int32_t connect_once(int32_t s, const sockaddr_un &address)
{
    return connect(s, reinterpret_cast<const sockaddr *>(&address), sizeof address);
}

/* A connect waits, for the send time-out, while the agent's queue of new connections is full. That
 * cannot be polled for: an interrupted one goes on with the time-out cut to what is left. */
int32_t connect_again(int32_t s, const sockaddr_un &address, int64_t start)
{
    timeval whole = time_out_of(s, SO_SNDTIMEO);
    int32_t result = -1;
    do {
        int64_t left = time_left(whole, start);
        if (left == 0) {
            errno = EAGAIN;
            break;
        }
        if (left > 0) {
            int64_t microseconds = left / 1000 + 1;
            timeval rest{.tv_sec = microseconds / 1'000'000, .tv_usec = microseconds % 1'000'000};
            setsockopt(s, SOL_SOCKET, SO_SNDTIMEO, &rest, sizeof rest);
        }
        result = connect_once(s, address);
    } while (result != 0 && errno == EINTR);
    int saved = errno;
    setsockopt(s, SOL_SOCKET, SO_SNDTIMEO, &whole, sizeof whole);
    errno = saved;
    return result;
}

int check_address(const void *address, uint32_t length)
{
    ServiceAddress service;
    if (address == nullptr || length != sizeof service) {
        return EINVAL;
    }
    memcpy(&service, address, sizeof service);
    if (service.length != sizeof service) {
        return EINVAL;
    }
    if (service.family != service_family) {
        return EAFNOSUPPORT;
    }
    /* Nobody listens on any other port. */
    return memcmp(service.port, service_port, sizeof service_port) == 0 ? 0 : ECONNREFUSED;
}

} // namespace

} // namespace host

using namespace host;

int32_t SOCK_Socket(int32_t family, int32_t type, int32_t protocol)
{
    if (family != service_family) {
        return reject(EAFNOSUPPORT);
    }
    if (type != datagram_type) {
        return reject(ESOCKTNOSUPPORT);
    }
    if (protocol != service_protocol) {
        return reject(EPROTONOSUPPORT);
    }
    return socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
}

int32_t SOCK_SetOption(int32_t s, int32_t level, int32_t option, const void *value, uint32_t length)
{
    for (const Option &known : options) {
        if (known.level != level || known.number != option) {
            continue;
        }
        if (value == nullptr || length != known.length) {
            return reject(EINVAL);
        }
        if (known.host == 0) {
            return s >= 0 ? 0 : reject(EBADF);
        }
        if (known.length == sizeof(TimeValue)) {
            timeval time = read_time(value);
            return setsockopt(s, SOL_SOCKET, known.host, &time, sizeof time);
        }
        return setsockopt(s, SOL_SOCKET, known.host, value, length);
    }
    return reject(ENOPROTOOPT);
}

int32_t SOCK_Connect(int32_t s, const void *address, uint32_t length)
{
    sockaddr_un path;
    int wrong = check_address(address, length);
    if (wrong != 0) {
        return fail(wrong, "not the address of the service");
    }
    if (master_socket(path) != 0) {
        return -1;
    }
    int64_t start = monotonic_now();
    int32_t result = connect_once(s, path);
    if (result != 0 && errno == EINTR) {
        result = connect_again(s, path, start);
    }
    return result == 0 ? 0
                       : fail(errno, "cannot connect to %s: %s", path.sun_path, strerror(errno));
}

int64_t SOCK_Send(int32_t s, const void *buffer, size_t length, int32_t flags)
{
    int64_t count = within_time_out(s, SO_SNDTIMEO, POLLOUT, flags, [=](int32_t now) {
        return send(s, buffer, length, now | MSG_NOSIGNAL);
    });
    if (count >= 0 && tracing()) {
        trace(Direction::sent, s, buffer, static_cast<size_t>(count));
    }
    return count;
}

int64_t SOCK_Recv(int32_t s, void *buffer, size_t size, int32_t flags)
{
    return receive(s, buffer, size, flags);
}

int64_t SOCK_RecvFrom(int32_t s, void *buffer, size_t size, int32_t flags)
{
    return receive(s, buffer, size, flags);
}

int32_t SOCK_Close(int32_t s) { return close(s); }

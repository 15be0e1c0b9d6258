/*
 * The file is opened, locked, appended to and closed for every datagram: it is whole at any moment,
 * several processes may share it, and no descriptor is kept that a daemon closing all of its own
 * would hand to something else.
 */
#include "trace.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include "system.h"

namespace host {

constinit std::atomic<Tracing> trace_state = Tracing::possible;

namespace {

constexpr uint16_t link_type_user0 = 147; /* what Wireshark lets its users assign */
constexpr uint32_t largest_packet = 65536;
constexpr int lock_attempts = 500; /* of a millisecond */

/* Section header and interface description: the start of every trace, written once. */
struct FileHeader {
    uint32_t section_type = 0x0a0d0d0a;
    uint32_t section_length = 44;
    uint32_t byte_order = 0x1a2b3c4d;
    uint16_t major = 1, minor = 0;
    uint32_t section_size[2] = {UINT32_MAX, UINT32_MAX}; /* not told */
    uint16_t application_option = 4, application_length = 8;
    char application[8] = {'o', 'f', 'p', '-', 'h', 'o', 's', 't'};
    uint32_t section_end_option = 0;
    uint32_t section_length_again = 44;

    uint32_t interface_type = 1;
    uint32_t interface_length = 40;
    uint16_t link_type = link_type_user0, reserved = 0;
    uint32_t snap_length = largest_packet;
    uint16_t name_option = 2, name_length = 3;
    char name[4] = {'o', 'f', 'p', 0};
    uint16_t resolution_option = 9, resolution_length = 1;
    uint8_t resolution[4] = {9, 0, 0, 0}; /* nanoseconds */
    uint32_t interface_end_option = 0;
    uint32_t interface_length_again = 40;
};
static_assert(sizeof(FileHeader) == 44 + 40);
constexpr FileHeader file_header;

struct PacketHeader {
    uint32_t type = 6;
    uint32_t length = 0; /* of the block */
    uint32_t interface_id = 0;
    uint32_t time_high = 0, time_low = 0;
    uint32_t captured = 0, original = 0;
};

constexpr size_t longest_comment = 64;

struct PacketTail {
    uint16_t flags_option = 2, flags_length = 4;
    uint32_t flags = 0;
    uint16_t comment_option = 1, comment_length = 0;
};

uint32_t padded(size_t length) { return static_cast<uint32_t>((length + 3) & ~size_t{3}); }

/* %p becomes the process id, %% a per cent sign. False when the result is too long. */
bool expand(const char *pattern, char *path, size_t size)
{
    size_t used = 0;
    for (const char *at = pattern; *at != '\0'; ++at) {
        if (used + 16 > size) {
            return false;
        }
        if (at[0] == '%' && at[1] == 'p') {
            used += static_cast<size_t>(snprintf(path + used, size - used, "%d", getpid()));
            ++at;
        } else {
            path[used++] = *at;
            at += at[0] == '%' && at[1] == '%' ? 1 : 0;
        }
    }
    path[used] = '\0';
    return true;
}

bool lock(int fd)
{
    for (int attempt = 0; attempt < lock_attempts; ++attempt) {
        if (flock(fd, LOCK_EX | LOCK_NB) == 0) {
            return true;
        }
        if (errno != EWOULDBLOCK && errno != EINTR) {
            return false;
        }
        sleep_milliseconds(1);
    }
    return false;
}

/* An empty file gets the header, any other must begin with it. Null, or what is wrong. */
const char *prepare(int fd, off_t size)
{
    FileHeader found;
    if (size == 0) {
        return write(fd, &file_header, sizeof file_header) == sizeof file_header ? nullptr
                                                                                 : strerror(errno);
    }
    return pread(fd, &found, sizeof found, 0) == sizeof found &&
                   memcmp(&found, &file_header, sizeof found) == 0
               ? nullptr
               : "not a trace of this library; left as it is";
}

/* Appends the block as a whole or not at all. Null, or what is wrong. */
const char *append(const char *path, const iovec *parts, int count, size_t length)
{
    Descriptor file(open(path, O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600));
    struct stat info {};
    if (!file || !lock(file.get()) || fstat(file.get(), &info) != 0) {
        return strerror(errno);
    }
    if (!S_ISREG(info.st_mode)) {
        return "not a regular file";
    }
    if (const char *wrong = prepare(file.get(), info.st_size)) {
        return wrong;
    }
    if (writev(file.get(), parts, count) == static_cast<ssize_t>(length)) {
        return nullptr;
    }
    const char *wrong = strerror(errno == 0 ? ENOSPC : errno);
    return ftruncate(file.get(), info.st_size) == 0 ? wrong : "cut short in a write that failed";
}

void give_up(const char *path, const char *why)
{
    if (trace_state.exchange(Tracing::off) != Tracing::off) {
        dprintf(STDERR_FILENO, "OFP_TRACE: %s: %s; nothing more is recorded\n", path, why);
    }
}

const char *append_packet(const char *path, Direction direction, int32_t s, const void *datagram,
                          size_t length)
{
    constexpr uint8_t zeros[8] = {};
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    uint64_t time = static_cast<uint64_t>(now.tv_sec) * nanoseconds_per_second +
                    static_cast<uint64_t>(now.tv_nsec);
    char comment[longest_comment];
    int written = snprintf(comment, sizeof comment, "%.30s[%d] socket %d",
                           program_invocation_short_name, getpid(), s);
    size_t comment_length = static_cast<size_t>(written);

    PacketTail tail;
    tail.flags = static_cast<uint32_t>(direction);
    tail.comment_length = static_cast<uint16_t>(comment_length);
    PacketHeader head;
    head.captured = head.original = static_cast<uint32_t>(length);
    head.time_high = static_cast<uint32_t>(time >> 32);
    head.time_low = static_cast<uint32_t>(time);
    uint32_t end_option = 0;
    head.length =
        static_cast<uint32_t>(sizeof head + padded(length) + sizeof tail + padded(comment_length) +
                              sizeof end_option + sizeof head.length);

    iovec parts[] = {{&head, sizeof head},
                     {const_cast<void *>(datagram), length},
                     {const_cast<uint8_t *>(zeros), padded(length) - length},
                     {&tail, sizeof tail},
                     {comment, comment_length},
                     {const_cast<uint8_t *>(zeros), padded(comment_length) - comment_length},
                     {&end_option, sizeof end_option},
                     {&head.length, sizeof head.length}};
    return append(path, parts, static_cast<int>(sizeof parts / sizeof *parts), head.length);
}

} // namespace

void trace(Direction direction, int32_t s, const void *datagram, size_t length)
{
    const char *pattern = environment("OFP_TRACE");
    if (pattern == nullptr) {
        trace_state.store(Tracing::off, std::memory_order_relaxed);
        return;
    }
    int saved = errno;
    char path[4096];
    const char *wrong = expand(pattern, path, sizeof path)
                            ? append_packet(path, direction, s, datagram, length)
                            : "name too long";
    if (wrong != nullptr) {
        give_up(pattern, wrong);
    }
    errno = saved;
}

} // namespace host

#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <mutex>
#include <new>

#include <fcntl.h>
#include <unistd.h>

#include "config.h"
#include "error.h"
#include "launch.h"
#include "lock.h"
#include "ofp/host.h"
#include "ofp/platform.h"
#include "ofp/result.h"
#include "system.h"

namespace host {

namespace {

constexpr int64_t pause = 5; /* milliseconds between looks at a lock */

bool known_service(const char *name)
{
    if (name != nullptr && strcmp(name, HOST_SERVICE) == 0) {
        return true;
    }
    fail(EINVAL, "service %s is not known", name != nullptr ? name : "(none)");
    return false;
}

/* When a start that begins now must be over. 0, or -1 with the error set. */
int32_t start_deadline(int64_t &deadline)
{
    constexpr double longest = 3600;
    double seconds = 10;
    if (const char *text = environment("OFP_START_TIMEOUT")) {
        const char *end = text + strlen(text);
        auto [stop, error] = std::from_chars(text, end, seconds);
        if (error != std::errc{} || stop != end || !(seconds > 0 && seconds <= longest)) {
            return fail(EINVAL, "OFP_START_TIMEOUT=%s: expected seconds, above 0 to 3600", text);
        }
    }
    deadline = monotonic_now() + static_cast<int64_t>(seconds * nanoseconds_per_second);
    return 0;
}

int32_t status(uint16_t node, bool &running)
{
    Path file;
    Holder holder{};
    int32_t result = node_file(node, "lock", file);
    if (result == 0) {
        result = find_holder(file, LockByte::serving, holder);
    }
    running = result == 0 && holder.held;
    return result;
}

/* One start of an agent at a time: among this process's threads by a mutex, among processes by a
 * record lock, which unlike other locks no forked child keeps. */
class StartLock {
public:
    int32_t take(const Path &file, int64_t deadline)
    {
        static std::timed_mutex mutex;
        std::chrono::nanoseconds left(deadline - monotonic_now());
        guard_ = std::unique_lock(mutex, left);
        if (!guard_) {
            return busy(file);
        }
        fd_.reset(open(file.text, O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        if (!fd_) {
            return fail(errno, "start lock %s: %s", file.text, strerror(errno));
        }
        while (lock_byte(fd_.get(), LockByte::owner) != 0) {
            if (errno != EAGAIN && errno != EACCES) {
                return fail(errno, "start lock %s: %s", file.text, strerror(errno));
            }
            if (monotonic_now() >= deadline) {
                return busy(file);
            }
            sleep_milliseconds(pause);
        }
        return 0;
    }

private:
    static int32_t busy(const Path &file)
    {
        return fail(ETIMEDOUT, "another start of the agent takes too long (%s)", file.text);
    }

    std::unique_lock<std::timed_mutex> guard_;
    Descriptor fd_; /* closed, and so unlocked, before the mutex is */
};

struct Files {
    Path directory;
    Path lock;
    Path start;
    Path log;
};

int32_t find_files(uint16_t node, Files &files)
{
    bool ok = runtime_dir(files.directory) == 0 && check_runtime_dir(files.directory, true) == 0 &&
              node_file(node, "lock", files.lock) == 0 &&
              node_file(node, "start", files.start) == 0 && node_file(node, "log", files.log) == 0;
    return ok ? 0 : -1;
}

enum class Found { serving, nobody, error };

/* An agent that has the lock is on its way up, when somebody started it by hand, or down. */
Found settle(const Files &files, int64_t deadline)
{
    for (;;) {
        Holder owner{};
        Holder serving{};
        if (find_holder(files.lock, LockByte::serving, serving) != 0 ||
            find_holder(files.lock, LockByte::owner, owner) != 0) {
            return Found::error;
        }
        if (serving.held || !owner.held) {
            return serving.held ? Found::serving : Found::nobody;
        }
        if (monotonic_now() >= deadline) {
            fail(ETIMEDOUT, "process %d holds %s and does not listen", owner.pid, files.lock.text);
            return Found::error;
        }
        sleep_milliseconds(pause);
    }
}

int32_t start(uint16_t node)
{
    Files files;
    StartLock lock;
    int64_t deadline = 0;
    if (start_deadline(deadline) != 0 || find_files(node, files) != 0) {
        return -1;
    }
    if (IF_IsNodeUp(node) == 0) {
        return fail(ENODEV, "node %u is down", node);
    }
    if (lock.take(files.start, deadline) != 0) {
        return -1;
    }
    Found found = settle(files, deadline);
    if (found != Found::nobody) {
        return found == Found::serving ? 0 : -1;
    }
    if (launch_agent(node, files.directory, files.log, deadline) == 0) {
        return 0;
    }
    /* One that was started by hand at the same time may have been faster. */
    Holder serving{};
    int code = errno;
    if (find_holder(files.lock, LockByte::serving, serving) == 0 && serving.held) {
        return 0;
    }
    errno = code;
    return -1;
}

uint32_t start_service(uint16_t node, const char *name)
{
    if (!known_service(name)) {
        return OFP_RC_INVALID;
    }
    try {
        return start(node) == 0 ? OFP_RC_OK : OFP_RC_FAILED;
    } catch (const std::bad_alloc &) {
        return refuse(OFP_RC_NO_RESOURCE, "cannot start the agent: out of memory");
    }
}

} // namespace

} // namespace host

using namespace host;

uint32_t SERVICE_GetStatus(uint16_t node, const char *name, uint32_t /*instance*/, uint32_t *status)
{
    bool running = false;
    *status = 0;
    if (!known_service(name)) {
        return OFP_RC_INVALID;
    }
    if (host::status(node, running) != 0) {
        return OFP_RC_FAILED;
    }
    *status = running ? 1 : 0;
    return OFP_RC_OK;
}

uint32_t SERVICE_Start(uint16_t node, const char *name, uint32_t /*argument1*/,
                       uint32_t /*argument2*/)
{
    return start_service(node, name);
}

uint32_t SERVICE_BatchStart(const uint16_t *nodes, uint32_t count, const char *name,
                            uint32_t /*argument1*/, uint32_t /*argument2*/)
{
    uint32_t first = OFP_RC_OK;
    if (nodes == nullptr && count != 0) {
        return refuse(OFP_RC_INVALID, "service start: no list of nodes");
    }
    for (uint32_t i = 0; i < count; ++i) {
        uint32_t code = start_service(nodes[i], name);
        first = first == OFP_RC_OK ? code : first;
    }
    return first;
}

uint32_t SERVICE_IsPhase4Over(uint16_t node)
{
    const HostConfig *config = HOST_GetConfig();
    return config != nullptr && IF_IsNodeUp(node) != 0 && config->phase4_over != 0 ? 1 : 0;
}

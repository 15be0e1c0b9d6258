#include "lock.h"

#include <cerrno>
#include <cstring>
#include <mutex>
#include <new>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "error.h"
#include "ofp/host.h"
#include "system.h"

namespace host {

namespace {

/* A process loses its record locks on a file when it closes any descriptor of that file, and is not
 * told of its own locks. Hence the locks of this process are looked up here first and their files
 * are not opened again. */
struct OwnLock {
    Path file;
    int fd;
    pid_t process; /* a forked child inherits this table but no lock */
    dev_t device;
    ino_t inode;
    bool serving;
};

constinit std::mutex own_mutex;

std::vector<OwnLock> &own_locks()
{
    static std::vector<OwnLock> locks;
    return locks;
}

bool still_held(const OwnLock &lock)
{
    struct stat info {};
    return lock.process == getpid() && fstat(lock.fd, &info) == 0 && info.st_dev == lock.device &&
           info.st_ino == lock.inode;
}

/* With own_mutex held. */
OwnLock *find_own(const Path &file)
{
    std::vector<OwnLock> &locks = own_locks();
    std::erase_if(locks, [](const OwnLock &lock) { return !still_held(lock); });
    for (OwnLock &lock : locks) {
        if (strcmp(lock.file.text, file.text) == 0) {
            return &lock;
        }
    }
    return nullptr;
}

struct flock range_of(LockByte byte)
{
    struct flock range {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_start = static_cast<off_t>(byte);
    range.l_len = 1;
    return range;
}

/* The lock file that was asked about last stays open: opening is the dearest part of asking, and
 * every call of the library asks. */
struct Watched {
    Path file;
    int fd;
    dev_t device;
    ino_t inode;
};

constinit Watched watched{{}, -1, 0, 0};

/* A program may close descriptors that it does not know and open others in their place. */
bool still_watched(struct stat &info)
{
    return watched.fd >= 0 && fstat(watched.fd, &info) == 0 && info.st_dev == watched.device &&
           info.st_ino == watched.inode;
}

/* With own_mutex held. To be called before this process locks a file: closing another descriptor of
 * that file later would end the lock. */
void stop_watching()
{
    struct stat info {};
    if (still_watched(info)) {
        close(watched.fd);
    }
    watched.fd = -1;
}

/* With own_mutex held. An open descriptor of the file, which stays watched; -1 and errno. */
int watch(const Path &file)
{
    struct stat info {};
    if (strcmp(watched.file.text, file.text) == 0 && still_watched(info) && info.st_nlink != 0) {
        return watched.fd;
    }
    stop_watching();
    Descriptor fd(open(file.text, O_RDONLY | O_CLOEXEC));
    if (fd && fd.get() <= STDERR_FILENO) {
        fd.reset(fcntl(fd.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    }
    if (!fd || fstat(fd.get(), &info) != 0) {
        return -1;
    }
    watched = {file, fd.release(), info.st_dev, info.st_ino};
    return watched.fd;
}

int32_t keep_own(const Path &file, int fd)
{
    struct stat info {};
    if (fstat(fd, &info) != 0) {
        return fail(errno, "lock file %s: %s", file.text, strerror(errno));
    }
    try {
        own_locks().push_back({file, fd, getpid(), info.st_dev, info.st_ino, false});
    } catch (const std::bad_alloc &) {
        return fail(ENOMEM, "lock file %s: out of memory", file.text);
    }
    return 0;
}

int32_t lock_owner(const Path &file)
{
    stop_watching();
    Descriptor fd(open(file.text, O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!fd) {
        return fail(errno, "lock file %s: %s", file.text, strerror(errno));
    }
    if (lock_byte(fd.get(), LockByte::owner) != 0) {
        if (errno == EAGAIN || errno == EACCES) {
            return fail(EWOULDBLOCK, "another agent holds %s", file.text);
        }
        return fail(errno, "lock file %s: %s", file.text, strerror(errno));
    }
    return keep_own(file, fd.get()) == 0 ? fd.release() : -1;
}

} // namespace

int32_t find_holder(const Path &file, LockByte byte, Holder &holder)
{
    holder = {};
    std::lock_guard guard(own_mutex);
    if (const OwnLock *own = find_own(file)) {
        bool held = byte == LockByte::owner || own->serving;
        holder = {held, held ? own->process : 0};
        return 0;
    }
    int fd = watch(file);
    struct flock range = range_of(byte);
    if (fd < 0 && errno == ENOENT) {
        return 0;
    }
    if (fd < 0 || fcntl(fd, F_GETLK, &range) != 0) {
        return fail(errno, "lock file %s: %s", file.text, strerror(errno));
    }
    holder.held = range.l_type != F_UNLCK;
    holder.pid = holder.held && range.l_pid > 0 ? range.l_pid : 0;
    return 0;
}

int32_t lock_byte(int fd, LockByte byte)
{
    struct flock range = range_of(byte);
    return fcntl(fd, F_SETLK, &range);
}

int32_t mark_serving(const Path &file)
{
    std::lock_guard guard(own_mutex);
    OwnLock *own = find_own(file);
    if (own == nullptr) {
        return fail(EPERM, "%s: to be locked first", file.text);
    }
    if (lock_byte(own->fd, LockByte::serving) != 0) {
        return fail(errno, "lock file %s: %s", file.text, strerror(errno));
    }
    own->serving = true;
    return 0;
}

} // namespace host

using namespace host;

int32_t HOST_LockAgent(uint16_t node)
{
    Path directory;
    Path file;
    if (runtime_dir(directory) != 0 || check_runtime_dir(directory, true) != 0 ||
        node_file(node, "lock", file) != 0) {
        return -1;
    }
    std::lock_guard guard(own_mutex);
    if (find_own(file) != nullptr) {
        return fail(EWOULDBLOCK, "this process holds %s already", file.text);
    }
    return lock_owner(file);
}

int32_t HOST_GetAgentPid(uint16_t node)
{
    Path file;
    Holder holder;
    if (node_file(node, "lock", file) != 0 || find_holder(file, LockByte::owner, holder) != 0) {
        return -1;
    }
    return holder.pid;
}

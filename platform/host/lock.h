/*
 * The lock file that says which agent serves a node. Its first byte is locked by the agent that
 * owns the node, its second from the moment that agent listens. Record locks end with their process
 * and the kernel names their owner, so that what they say is never stale. The file is never
 * removed: who had it open would hold a lock that nobody else sees.
 */
#ifndef OFP_PLATFORM_HOST_LOCK_H
#define OFP_PLATFORM_HOST_LOCK_H

#include <cstdint>

#include "runtime.h"

namespace host {

enum class LockByte : int64_t { owner = 0, serving = 1 };

struct Holder {
    bool held;
    int32_t pid; /* 0: not visible from here */
};

/* Who holds that byte of a lock file. 0, or -1 with the error set. */
int32_t find_holder(const Path &file, LockByte byte, Holder &holder);

/* Locks one byte of an open lock file, without waiting; -1 and errno. */
int32_t lock_byte(int fd, LockByte byte);

/* Marks this process's lock of the file as serving; EPERM when it has none. */
int32_t mark_serving(const Path &file);

} // namespace host

#endif

/* The agent's side of the service's sockets. */
#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "error.h"
#include "lock.h"
#include "ofp/host.h"
#include "runtime.h"
#include "system.h"

namespace host {

namespace {

/* Removes what a dead agent left; anything but a socket is somebody's file. */
int32_t remove_stale(const Path &path)
{
    struct stat info {};
    if (lstat(path.text, &info) != 0) {
        return errno == ENOENT ? 0 : fail(errno, "%s: %s", path.text, strerror(errno));
    }
    if (!S_ISSOCK(info.st_mode)) {
        return fail(EEXIST, "%s: in the way, and not a socket", path.text);
    }
    return unlink(path.text) == 0 ? 0 : fail(errno, "%s: %s", path.text, strerror(errno));
}

int32_t listen_at(const Path &path)
{
    constexpr int on = 1;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    memcpy(address.sun_path, path.text, sizeof path.text);

    Descriptor s(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    /* The mode goes to the file that bind makes. */
    if (!s || setsockopt(s.get(), SOL_SOCKET, SO_PASSCRED, &on, sizeof on) != 0 ||
        fchmod(s.get(), 0600) != 0 ||
        bind(s.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        listen(s.get(), SOMAXCONN) != 0) {
        return fail(errno, "cannot listen at %s: %s", path.text, strerror(errno));
    }
    return s.release();
}

} // namespace

} // namespace host

using namespace host;

int32_t HOST_ListenAgent(uint16_t node)
{
    Path lock;
    Path socket_path;
    Holder holder;
    if (node_file(node, "lock", lock) != 0 || node_file(node, "sock", socket_path) != 0 ||
        find_holder(lock, LockByte::owner, holder) != 0) {
        return -1;
    }
    if (holder.pid != getpid()) {
        return fail(EPERM, "%s: to be locked first", lock.text);
    }
    if (remove_stale(socket_path) != 0) {
        return -1;
    }
    Descriptor listener(listen_at(socket_path));
    return listener && mark_serving(lock) == 0 ? listener.release() : -1;
}

int64_t HOST_Receive(int32_t s, void *buffer, size_t size)
{
    /* Room for the sender's credentials and for nothing else that it may have attached. Every
     * datagram brings them, an empty one too; a hang-up brings none. A reset precedes what the peer
     * had sent before it closed with answers unread. */
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(ucred))];
    iovec data{buffer, size};
    msghdr message;
    int64_t count;
    do {
        message = {};
        message.msg_iov = &data;
        message.msg_iovlen = 1;
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        count = recvmsg(s, &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    } while (count < 0 && (errno == EINTR || errno == ECONNRESET));
    return count == 0 && message.msg_controllen == 0 ? HOST_HANGUP : count;
}

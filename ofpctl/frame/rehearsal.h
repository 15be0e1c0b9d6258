// A rehearsal shows what would be sent: calls of the library run as ever, but their datagrams go to
// a listener instead of the agent, which seems to run and to say yes.
//
// This program's own SOCK_Send and SERVICE_GetStatus stand before the platform's for that.
#ifndef OFPCTL_FRAME_REHEARSAL_H
#define OFPCTL_FRAME_REHEARSAL_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace ofpctl {

// At most one lives at a time.
class Rehearsal {
public:
    using Listener = std::function<void(std::span<const uint8_t> datagram)>;

    explicit Rehearsal(Listener listener);
    ~Rehearsal();
    Rehearsal(const Rehearsal &) = delete;
    Rehearsal &operator=(const Rehearsal &) = delete;
};

bool rehearsing();
// The agent's part: the result reply 0. Returns its length.
int64_t rehearsed_reply(void *buffer, std::size_t size);

} // namespace ofpctl

#endif

// An open channel to the agent daemon, closed by its scope.
#pragma once

#include <cstdint>

#include "ofp/channel.h"

namespace ofp {

constexpr uint64_t request_timeout = 30; // seconds

// The socket of a channel, not yet connected, or -1.
[[nodiscard]] int32_t open_socket();
// Connects it to the agent daemon's service address.
[[nodiscard]] bool connect_to_service(int32_t socket);

class Channel {
public:
    explicit Channel(int32_t socket) : socket_(socket) {}
    ~Channel()
    {
        if (is_open())
            OFP_plgn_Close(socket_);
    }
    Channel(const Channel &) = delete;
    Channel &operator=(const Channel &) = delete;

    bool is_open() const { return socket_ >= 0; }
    int32_t socket() const { return socket_; }
    // Gives the socket away.
    [[nodiscard]] int32_t release()
    {
        const int32_t socket = socket_;
        socket_ = -1;
        return socket;
    }

private:
    int32_t socket_;
};

} // namespace ofp

// A server on a socket without a file, its event loop turned by the test, and clients of it.
#pragma once

#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "agent/daemon/messages.h"
#include "daemon/server.h"

namespace agent::test {

// A client's connection.
class Client {
public:
    explicit Client(const sockaddr_un &address, socklen_t length)
        : fd_(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
    {
        connected_ =
            fd_ >= 0 && connect(fd_, reinterpret_cast<const sockaddr *>(&address), length) == 0;
    }
    Client(Client &&other) noexcept : fd_(std::exchange(other.fd_, -1)), connected_(true) {}
    Client &operator=(Client &&) = delete;
    ~Client() { hang_up(); }

    bool connected() const { return connected_; }
    int fd() const { return fd_; }

    bool send(const Datagram &datagram)
    {
        return ::send(fd_, datagram.data(), datagram.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(datagram.size());
    }
    // Empty when nothing is there or the connection has ended.
    Datagram receive()
    {
        Datagram datagram(512);
        const ssize_t got = recv(fd_, datagram.data(), datagram.size(), MSG_DONTWAIT);
        ended_ = got == 0 || (got < 0 && errno != EAGAIN);
        datagram.resize(got > 0 ? static_cast<size_t>(got) : 0);
        return datagram;
    }
    // True when the last receive found the connection ended.
    bool ended() const { return ended_; }
    void hang_up()
    {
        if (fd_ >= 0) {
            close(fd_);
            fd_ = -1;
        }
    }

private:
    int fd_;
    bool connected_ = false;
    bool ended_ = false;
};

class ServerTest : public testing::Test {
protected:
    explicit ServerTest(const QueueLimits &limits = {})
    {
        const std::string name = "ofp-server-test-" + std::to_string(getpid());
        address_.sun_family = AF_UNIX;
        std::memcpy(address_.sun_path + 1, name.data(), name.size());
        length_ = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
        listener_ = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        const int on = 1;
        setsockopt(listener_, SOL_SOCKET, SO_PASSCRED, &on, sizeof on);
        bind(listener_, reinterpret_cast<const sockaddr *>(&address_), length_);
        listen(listener_, 1024);
        base_ = event_base_new();
        server_.emplace(base_, listener_, model_, limits);
        server_->start();
        open_period(model_);
    }
    ~ServerTest() override
    {
        server_.reset();
        event_base_free(base_);
        close(listener_);
    }

    Client connect_client() { return Client(address_, length_); }

    // Until a turn finds nothing to do.
    void turn()
    {
        for (int idle = 0; idle < 2;) {
            idle = event_base_loop(base_, EVLOOP_NONBLOCK) == 0 && !pending() ? idle + 1 : 0;
        }
    }
    bool pending() const { return event_base_get_num_events(base_, EVENT_BASE_COUNT_ACTIVE) > 0; }

    // One request, its answers.
    std::vector<Datagram> exchange(Client &client, const Datagram &request)
    {
        EXPECT_TRUE(client.send(request));
        turn();
        std::vector<Datagram> answers;
        for (Datagram answer; !(answer = client.receive()).empty();) {
            answers.push_back(answer);
        }
        return answers;
    }

    uint32_t rules() const { return model_.flow_switch().table(CLIENT, 200).rules; }

    sockaddr_un address_{};
    socklen_t length_ = 0;
    int listener_ = -1;
    Model model_;
    event_base *base_ = nullptr;
    std::optional<Server> server_;
};

} // namespace agent::test

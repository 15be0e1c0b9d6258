#include "agent/channel/controller_peer.h"

#include <cerrno>
#include <chrono>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace agent::test {

ControllerPeer::ControllerPeer()
    : listener_(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(listener_, reinterpret_cast<const sockaddr *>(&address), sizeof address);
    listen(listener_, 8);
    socklen_t length = sizeof address;
    getsockname(listener_, reinterpret_cast<sockaddr *>(&address), &length);
    port_ = ntohs(address.sin_port);
}

ControllerPeer::~ControllerPeer()
{
    hang_up();
    close(listener_);
}

bool ControllerPeer::accept()
{
    const int fd = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    hang_up();
    fd_ = fd;
    const int on = 1;
    setsockopt(fd_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return true;
}

void ControllerPeer::send(const Datagram &bytes)
{
    ASSERT_EQ(::send(fd_, bytes.data(), bytes.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(bytes.size()));
}

Datagram ControllerPeer::receive()
{
    uint8_t piece[4096];
    for (ssize_t got; (got = recv(fd_, piece, sizeof piece, 0)) > 0;) {
        input_.insert(input_.end(), piece, piece + got);
    }
    if (input_.size() < 8) {
        return {};
    }
    const size_t length = openflow::load16(&input_[2]);
    if (input_.size() < length) {
        return {};
    }
    const auto end = input_.begin() + static_cast<std::ptrdiff_t>(length);
    Datagram whole(input_.begin(), end);
    input_.erase(input_.begin(), end);
    return whole;
}

bool ControllerPeer::hung_up()
{
    uint8_t byte;
    const ssize_t got = recv(fd_, &byte, 1, MSG_PEEK);
    return got == 0 || (got < 0 && errno != EAGAIN);
}

void ControllerPeer::hang_up()
{
    if (fd_ >= 0) {
        close(fd_);
        fd_ = -1;
    }
    input_.clear();
}

Datagram message(uint8_t type, uint32_t xid, const Datagram &body)
{
    return join({be8(4), be8(type), be16(static_cast<uint16_t>(8 + body.size())), be32(xid), body});
}

ChannelTest::ChannelTest() : base_(event_base_new()) { channels_.emplace(base_, model_); }

ChannelTest::~ChannelTest()
{
    channels_.reset();
    event_base_free(base_);
}

void ChannelTest::configure(uint16_t instance, const std::function<void(InstanceConfig &)> &change)
{
    Configuration &configuration = model_.configuration();
    const InstanceConfig *const known = configuration.staged(instance);
    InstanceConfig config = known ? *known : new_instance(instance);
    change(config);
    configuration.stage(instance, std::move(config));
    ASSERT_TRUE(configuration.commit());
}

void ChannelTest::remove(uint16_t instance)
{
    model_.configuration().stage_removal(instance);
    ASSERT_TRUE(model_.configuration().commit());
}

void ChannelTest::add_controller(uint16_t instance, uint8_t id, const ControllerPeer &peer)
{
    configure(instance, [&](InstanceConfig &config) {
        config.active = true;
        config.datapath_id = 0x0102030405060708;
        config.echo_interval = 1;
        config.reconnect_interval = 1;
        if (config.tables.empty()) {
            config.tables.push_back({.table_id = 0, .reserved_1 = {}, .kind = 1});
        }
        config.controllers[id].address = {ADDRESS_IPV4, {127, 0, 0, 1}};
        config.controllers[id].port = peer.port();
    });
}

bool ChannelTest::until(const std::function<bool()> &condition)
{
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + 5s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        event_base_loop(base_, EVLOOP_NONBLOCK);
        usleep(500);
    }
    return true;
}

void ChannelTest::shake_hands(ControllerPeer &peer)
{
    ASSERT_TRUE(until([&] { return peer.accept(); }));
    const Datagram hello = next(peer);
    ASSERT_EQ(to_hex(hello).substr(0, 8), "04000010");
    EXPECT_EQ(Datagram(hello.begin() + 8, hello.end()), hex("0001 0008 00000010")); // version 4
    peer.send(message(0, 7));
    event_base_loop(base_, EVLOOP_NONBLOCK);
}

Datagram ChannelTest::next(ControllerPeer &peer)
{
    Datagram received;
    EXPECT_TRUE(until([&] { return !(received = peer.receive()).empty(); }));
    return received;
}

// What it is answered, echo requests apart.
Datagram ChannelTest::ask(ControllerPeer &peer, const Datagram &request)
{
    peer.send(request);
    Datagram answer;
    do {
        answer = next(peer);
    } while (answer.size() > 1 && answer[1] == 2);
    return answer;
}

} // namespace agent::test

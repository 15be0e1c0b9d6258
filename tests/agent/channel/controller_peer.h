// A controller that does what the test tells it: one listening socket, one connection at a time,
// whole OpenFlow messages.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include <event2/event.h>
#include <gtest/gtest.h>

#include "agent/daemon/messages.h"
#include "channel/channels.h"

namespace agent::test {

class ControllerPeer {
public:
    ControllerPeer();
    ~ControllerPeer();
    ControllerPeer(const ControllerPeer &) = delete;
    ControllerPeer &operator=(const ControllerPeer &) = delete;

    uint16_t port() const { return port_; }
    bool accept(); // false when nobody connects now
    bool connected() const { return fd_ >= 0; }
    void send(const Datagram &bytes);
    // The first whole message that has arrived; empty when there is none.
    Datagram receive();
    bool hung_up(); // by the agent
    void hang_up();
    int fd() const { return fd_; }

private:
    int listener_;
    int fd_ = -1;
    uint16_t port_ = 0;
    Datagram input_;
};

// An OpenFlow 1.3 message with a transaction id and a body.
Datagram message(uint8_t type, uint32_t xid, const Datagram &body = {});

// Channels over a model whose configuration the test changes; the test turns the event loop.
class ChannelTest : public testing::Test {
protected:
    ChannelTest();
    ~ChannelTest() override;

    // Changes an instance and commits; makes it when there is none.
    void configure(uint16_t instance, const std::function<void(InstanceConfig &)> &change);
    void remove(uint16_t instance);
    // An active instance with table 0 and this controller.
    void add_controller(uint16_t instance, uint8_t id, const ControllerPeer &peer);

    // Turns the event loop until the condition holds; false when it does not within 5 seconds.
    bool until(const std::function<bool()> &condition);
    // Accepts, takes the hello and says hello.
    void shake_hands(ControllerPeer &peer);
    Datagram next(ControllerPeer &peer); // waits for a message
    Datagram ask(ControllerPeer &peer, const Datagram &request);

    const ControllerState &state(uint16_t instance = INSTANCE, uint8_t id = 0) const
    {
        return *model_.controllers.find(instance, id);
    }

    static constexpr uint16_t INSTANCE = 3;

    Model model_;
    event_base *base_;
    std::optional<Channels> channels_;
};

} // namespace agent::test

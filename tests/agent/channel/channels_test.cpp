// Following the configuration, and telling the applications.
#include "channel/channels.h"

#include "agent/channel/controller_peer.h"
#include "events/notification.h"

namespace agent::test {
namespace {

constexpr Sender APPLICATION{1, 100};

// What an event says.
struct Told {
    uint32_t event = 0;
    uint16_t instance = 0;
    uint16_t value = 0; // of the controller, or the status
    uint16_t port = 0;

    bool operator==(const Told &) const = default;
    friend void PrintTo(const Told &told, std::ostream *out)
    {
        *out << "{event " << told.event << ", instance " << told.instance << ", value " << std::hex
             << told.value << std::dec << ", port " << told.port << '}';
    }
};

Told read_event(const Datagram &event)
{
    Told told;
    told.event = openflow::load32(&event[12]);
    if (told.event == 16) {
        told.value = static_cast<uint16_t>(openflow::load32(&event[20]));
    } else {
        told.instance = openflow::load16(&event[20]);
        told.port = openflow::load16(&event[28 + 48]);
        told.value = openflow::load16(&event[28 + 184]);
    }
    return told;
}

class ChannelsTest : public ChannelTest {
protected:
    ChannelsTest()
    {
        model_.applications.enroll(5, APPLICATION);
        for (const uint32_t event : {2u, 4u, 8u, 16u}) {
            model_.applications.subscribe(5, event);
        }
    }
    // The events since the last call.
    std::vector<Told> told()
    {
        std::vector<Told> all;
        Outbox &waiting = model_.applications.of(1)->waiting;
        for (Bytes first[1]; waiting.front(first) == 1; waiting.drop(1)) {
            all.push_back(read_event({first[0].begin(), first[0].end()}));
        }
        return all;
    }
    // Two in a row: what happened, and the status.
    static std::vector<Told> happened(uint32_t event, uint16_t value, uint16_t port,
                                      uint16_t status)
    {
        return {{event, INSTANCE, value, port}, {16, 0, status, 0}};
    }
    Outage outage() const { return model_.controllers.find(INSTANCE)->outage; }
};

TEST_F(ChannelsTest, TellsOfEveryStepInAControllersLife)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 7, peer);
    EXPECT_EQ(told(), happened(2, 0x0007, peer.port(), 0));
    shake_hands(peer);
    ASSERT_TRUE(until([&] { return state(INSTANCE, 7).connected(); }));
    EXPECT_EQ(told(), happened(4, 0x0107, peer.port(), 1));
    peer.hang_up();
    ASSERT_TRUE(until([&] { return !state(INSTANCE, 7).connected(); }));
    EXPECT_EQ(told(), happened(4, 0x0007, peer.port(), 0));
    configure(INSTANCE, [](InstanceConfig &config) { config.controllers.clear(); });
    EXPECT_EQ(told(), happened(8, 0x0007, peer.port(), 0));
    EXPECT_FALSE(model_.controllers.find(INSTANCE));
}

TEST_F(ChannelsTest, AnInstanceTakesItsControllersWithIt)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    shake_hands(peer);
    ASSERT_TRUE(until([&] { return state().connected(); }));
    told();
    remove(INSTANCE);
    EXPECT_EQ(told(), happened(8, 0, peer.port(), 0));
    EXPECT_TRUE(until([&] { return peer.hung_up(); }));
}

TEST_F(ChannelsTest, AnotherAddressIsAnotherConnection)
{
    ControllerPeer first;
    ControllerPeer second;
    add_controller(INSTANCE, 0, first);
    shake_hands(first);
    ASSERT_TRUE(until([&] { return state().connected(); }));
    told();
    configure(INSTANCE,
              [&](InstanceConfig &config) { config.controllers[0].port = second.port(); });
    EXPECT_EQ(told(), (std::vector<Told>{{4, INSTANCE, 0, second.port()},
                                         {16, 0, 0, 0},
                                         {2, INSTANCE, 0, second.port()},
                                         {16, 0, 0, 0}}));
    EXPECT_TRUE(until([&] { return first.hung_up(); }));
    shake_hands(second);
    EXPECT_TRUE(until([&] { return state().connected(); }));
}

TEST_F(ChannelsTest, OtherChangesLeaveAConnectionAlone)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    shake_hands(peer);
    ASSERT_TRUE(until([&] { return state().connected(); }));
    told();
    configure(INSTANCE, [](InstanceConfig &config) {
        config.description = "x";
        config.echo_interval = 30;
        config.reconnect_interval = 30;
        config.fail_mode = FAIL_STANDALONE;
    });
    EXPECT_TRUE(told().empty());
    EXPECT_EQ(ask(peer, message(2, 4)), message(3, 4));
    EXPECT_EQ(state().connections, 1u);
}

TEST_F(ChannelsTest, OnlyActiveInstancesConnect)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    configure(INSTANCE, [](InstanceConfig &config) { config.active = false; });
    EXPECT_EQ(state().state, ChannelState::held);
    EXPECT_EQ(state().reason, "the instance is not active");
    EXPECT_EQ(outage(), Outage::none);
    configure(INSTANCE, [](InstanceConfig &config) { config.active = true; });
    shake_hands(peer);
    ASSERT_TRUE(until([&] { return state().connected(); }));
    told();
    configure(INSTANCE, [](InstanceConfig &config) { config.active = false; });
    EXPECT_EQ(told(), happened(4, 0, peer.port(), 0));
    EXPECT_TRUE(until([&] { return peer.hung_up(); }));
}

TEST_F(ChannelsTest, SaysWhyItDoesNotConnect)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    configure(INSTANCE, [](InstanceConfig &config) { config.controllers[0].tls_policy = "lab"; });
    EXPECT_EQ(state().state, ChannelState::held);
    EXPECT_NE(state().reason.find("TLS"), std::string::npos);
    EXPECT_NE(state().reason.find("lab"), std::string::npos);
    configure(INSTANCE, [](InstanceConfig &config) {
        config.controllers[0].tls_policy.clear();
        config.excluded.controllers = 1;
    });
    EXPECT_EQ(state().reason, "it is excluded");
    configure(INSTANCE, [](InstanceConfig &config) { config.excluded.controllers = 2; });
    shake_hands(peer);
    EXPECT_TRUE(until([&] { return state().connected(); }));
}

TEST_F(ChannelsTest, AnInstanceWithoutControllersIsInOneOfTwoStates)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    EXPECT_EQ(outage(), Outage::secure);
    configure(INSTANCE, [](InstanceConfig &config) { config.fail_mode = FAIL_STANDALONE; });
    EXPECT_EQ(outage(), Outage::standalone);
    shake_hands(peer);
    EXPECT_TRUE(until([&] { return outage() == Outage::none; }));
    peer.hang_up();
    EXPECT_TRUE(until([&] { return outage() == Outage::standalone; }));
}

TEST_F(ChannelsTest, OneAtATimeGoesOnToTheNextAndRoundAgain)
{
    ControllerPeer first;
    ControllerPeer second;
    add_controller(INSTANCE, 1, first);
    add_controller(INSTANCE, 2, second);
    configure(INSTANCE, [](InstanceConfig &config) { config.connection_mode = CONNECT_SINGLE; });
    EXPECT_EQ(state(INSTANCE, 2).state, ChannelState::held);
    shake_hands(first);
    ASSERT_TRUE(until([&] { return state(INSTANCE, 1).connected(); }));
    first.hang_up();
    shake_hands(second);
    ASSERT_TRUE(until([&] { return state(INSTANCE, 2).connected(); }));
    EXPECT_EQ(state(INSTANCE, 1).state, ChannelState::held);
    EXPECT_NE(state(INSTANCE, 1).reason.find("controller 2"), std::string::npos);
    second.hang_up();
    shake_hands(first);
    EXPECT_TRUE(until([&] { return state(INSTANCE, 1).connected(); }));
    EXPECT_EQ(model_.controllers.find(INSTANCE)->connected(), 1u);
}

TEST_F(ChannelsTest, AnInitialRoleMayBeConfigured)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    configure(INSTANCE, [](InstanceConfig &config) { config.controllers[0].role = 3; });
    shake_hands(peer);
    ASSERT_TRUE(until([&] { return state().connected(); }));
    EXPECT_EQ(state().role, Role::slave);
}

TEST_F(ChannelsTest, CountersAreResetOnRequest)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    shake_hands(peer);
    ask(peer, message(20, 1));
    EXPECT_EQ(state().received[20], 1u);
    EXPECT_EQ(state().sent[21], 1u);
    model_.configuration().reset_counters(INSTANCE, 5);
    EXPECT_EQ(state().received[20], 1u);
    model_.configuration().reset_counters(INSTANCE, 64);
    EXPECT_EQ(state().received[20], 0u);
    EXPECT_EQ(state().sent[21], 0u);
    EXPECT_TRUE(state().connected());
}

TEST_F(ChannelsTest, ConnectToWhatIsConfiguredAlready)
{
    ControllerPeer peer;
    channels_.reset();
    add_controller(INSTANCE, 0, peer);
    channels_.emplace(base_, model_);
    shake_hands(peer);
    EXPECT_TRUE(until([&] { return state().connected(); }));
}

TEST_F(ChannelsTest, SixtyFourControllersOfAnInstance)
{
    std::vector<std::unique_ptr<ControllerPeer>> peers;
    for (uint8_t id = 0; id < 64; ++id) {
        peers.push_back(std::make_unique<ControllerPeer>());
        add_controller(INSTANCE, id, *peers.back());
    }
    configure(INSTANCE, [](InstanceConfig &config) { config.echo_interval = 30; });
    for (const auto &peer : peers) {
        shake_hands(*peer);
    }
    EXPECT_TRUE(until([&] { return model_.controllers.connected() == 64; }));
}

} // namespace
} // namespace agent::test

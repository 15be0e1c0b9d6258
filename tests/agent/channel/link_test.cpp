// Connecting, hello, echo, reconnecting.
#include "channel/link.h"

#include <sys/socket.h>

#include "agent/channel/controller_peer.h"

namespace agent::test {
namespace {

using LinkTest = ChannelTest;

TEST_F(LinkTest, ConnectsAndIsUpOnceBothSaidHello)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    EXPECT_EQ(state().state, ChannelState::waiting);
    ASSERT_TRUE(until([&] { return peer.accept(); }));
    ASSERT_TRUE(until([&] { return state().state == ChannelState::negotiating; }));
    next(peer);
    peer.send(message(0, 7));
    ASSERT_TRUE(until([&] { return state().connected(); }));
    EXPECT_EQ(state().attempts, 1u);
    EXPECT_EQ(state().connections, 1u);
    EXPECT_EQ(state().role, Role::equal);
    EXPECT_TRUE(state().reason.empty());
    EXPECT_EQ(state().sent[0], 1u);
    EXPECT_EQ(state().received[0], 1u);
}

TEST_F(LinkTest, AHelloMayOfferMoreThanItsVersion)
{
    // Header version and elements; whether version 4 is among what is offered.
    const struct {
        uint8_t version;
        const char *elements;
        bool accepted;
    } hellos[] = {
        {4, "", true},
        {6, "", true},                                      // 4 and lower ones too
        {1, "", false},                                     //
        {6, "0001 0008 00000050", true},                    // versions 4 and 6
        {6, "0001 0008 00000040", false},                   // version 6 alone
        {1, "0001 0008 00000012", true},                    // 1 and 4
        {5, "0002 0004 00000000 0001 0008 00000010", true}, // an unknown element before it, padded
        {4, "0001 0003 00000000", true}, // a malformed element: the header counts
        {4, "0001 ffff 00000000", true}, //
    };
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    for (const auto &hello : hellos) {
        // Begins anew without waiting for the reconnect interval.
        configure(INSTANCE, [](InstanceConfig &config) { config.active = false; });
        configure(INSTANCE, [](InstanceConfig &config) { config.active = true; });
        ASSERT_TRUE(until([&] { return peer.accept(); }));
        next(peer);
        Datagram own = message(0, 7, hex(hello.elements));
        own[0] = hello.version;
        peer.send(own);
        if (hello.accepted) {
            EXPECT_TRUE(until([&] { return state().connected(); })) << hello.elements;
            peer.hang_up();
            EXPECT_TRUE(until([&] { return !state().connected(); }));
        } else {
            const Datagram refusal = next(peer);
            ASSERT_GE(refusal.size(), 12u);
            EXPECT_EQ(to_hex(refusal).substr(0, 4), "0401");
            EXPECT_EQ(to_hex(refusal).substr(16, 8), "00000000"); // hello failed, incompatible
            EXPECT_TRUE(until([&] { return peer.hung_up(); }));
            EXPECT_NE(state().reason.find("OpenFlow 1.3"), std::string::npos);
        }
    }
}

TEST_F(LinkTest, AControllerThatDoesNotBeginWithHelloIsHungUpOn)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    ASSERT_TRUE(until([&] { return peer.accept(); }));
    next(peer);
    peer.send(message(5, 1));
    EXPECT_TRUE(until([&] { return peer.hung_up(); }));
    EXPECT_EQ(state().state, ChannelState::waiting);
    EXPECT_EQ(state().connections, 0u);
}

TEST_F(LinkTest, EchoesAreAnsweredWithTheirBytes)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    shake_hands(peer);
    EXPECT_EQ(ask(peer, message(2, 0x12345678, hex("010203"))),
              message(3, 0x12345678, hex("010203")));
    EXPECT_EQ(ask(peer, message(2, 1)), message(3, 1));
}

TEST_F(LinkTest, AsksForAnEchoAtTheConfiguredIntervalAndLivesWhileItIsAnswered)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer); // every second
    shake_hands(peer);
    for (int i = 0; i < 2; ++i) {
        const Datagram request = next(peer);
        ASSERT_EQ(request.size(), 8u);
        EXPECT_EQ(request[1], 2);
        peer.send(message(3, openflow::load32(&request[4])));
    }
    EXPECT_TRUE(state().connected());
    EXPECT_EQ(state().lost, 0u);
}

TEST_F(LinkTest, AControllerThatFallsSilentIsLostAndConnectedAnew)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    shake_hands(peer);
    EXPECT_TRUE(until([&] { return state().lost == 1; })); // two echo intervals
    EXPECT_NE(state().reason.find("echo"), std::string::npos);
    shake_hands(peer); // after the reconnect interval
    EXPECT_TRUE(until([&] { return state().connected(); }));
    EXPECT_EQ(state().connections, 2u);
}

TEST_F(LinkTest, TriesAgainAtTheReconnectInterval)
{
    std::optional<ControllerPeer> nobody(std::in_place);
    add_controller(INSTANCE, 0, *nobody);
    nobody.reset();
    ASSERT_TRUE(until([&] { return state().attempts >= 2; }));
    EXPECT_EQ(state().connections, 0u);
    EXPECT_FALSE(state().reason.empty() && state().state == ChannelState::waiting);
}

TEST_F(LinkTest, MessagesMayArriveByteByByte)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    shake_hands(peer);
    for (const uint8_t byte : message(20, 9)) {
        peer.send({byte});
        event_base_loop(base_, EVLOOP_NONBLOCK);
    }
    EXPECT_EQ(next(peer), message(21, 9));
}

TEST_F(LinkTest, AMessageShorterThanItsHeaderEndsTheConnection)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    shake_hands(peer);
    peer.send(hex("04 14 0007 00000001"));
    EXPECT_TRUE(until([&] { return peer.hung_up(); }));
    EXPECT_NE(state().reason.find("length 7"), std::string::npos);
}

TEST_F(LinkTest, AnotherVersionIsRefusedMessageByMessage)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    shake_hands(peer);
    EXPECT_EQ(ask(peer, hex("01 14 0008 00000009")), error_reply(hex("01 14 0008 00000009"), 1, 0));
    EXPECT_TRUE(state().connected());
}

TEST_F(LinkTest, AControllerThatNeverReadsHoldsBoundedMemoryAndDelaysNobody)
{
    ControllerPeer deaf;
    ControllerPeer other;
    add_controller(INSTANCE, 0, deaf);
    add_controller(INSTANCE + 1, 0, other);
    shake_hands(deaf);
    shake_hands(other);
    const Datagram request = message(2, 1, Datagram(60'000, 7));
    size_t offset = 0;
    size_t sent = 0;
    for (int idle = 0; idle < 200 && sent < 1000;) {
        const ssize_t got = ::send(deaf.fd(), request.data() + offset, request.size() - offset,
                                   MSG_NOSIGNAL | MSG_DONTWAIT);
        if (got > 0) {
            offset += static_cast<size_t>(got);
            sent += offset == request.size();
            offset = offset == request.size() ? 0 : offset;
            idle = 0;
        } else {
            ++idle;
        }
        event_base_loop(base_, EVLOOP_NONBLOCK);
    }
    EXPECT_LT(sent, 1000u); // 60 MB were never taken
    EXPECT_EQ(ask(other, message(20, 3)), message(21, 3));
    EXPECT_TRUE(until([&] { return state().lost == 1; })); // it answers no echo either
}

TEST_F(LinkTest, WhatAControllerSentBeforeItReadsIsAnsweredOnceItReads)
{
    ControllerPeer peer;
    add_controller(INSTANCE, 0, peer);
    configure(INSTANCE, [](InstanceConfig &config) { config.echo_interval = 60; });
    shake_hands(peer);
    constexpr uint32_t REQUESTS = 4'000;
    Datagram all;
    for (uint32_t i = 0; i < REQUESTS; ++i) {
        const Datagram one = message(2, i, Datagram(1000, 1)); // 4 MB in all
        all.insert(all.end(), one.begin(), one.end());
    }
    size_t sent = 0;
    uint32_t answered = 0;
    ASSERT_TRUE(until([&] {
        const ssize_t got =
            ::send(peer.fd(), all.data() + sent, all.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (got > 0) {
            sent += static_cast<size_t>(got);
            return false;
        }
        for (Datagram answer; !(answer = peer.receive()).empty(); ++answered) {
            EXPECT_EQ(openflow::load32(&answer[4]), answered);
        }
        return answered == REQUESTS;
    }));
}

} // namespace
} // namespace agent::test

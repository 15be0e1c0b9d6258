// Events on their way from the model to the applications' sockets.
#include <gtest/gtest.h>

#include "agent/daemon/server_fixture.h"
#include "events/notification.h"

namespace agent::test {
namespace {

class Delivery : public ServerTest {
protected:
    Client register_app(uint8_t id)
    {
        Client client = connect_client();
        EXPECT_TRUE(client.send(
            join({head(0x50000008), hex("00bf 0008 00000000"), be8(id), hex("000000")})));
        return client;
    }
    Datagram subscription(uint8_t id, uint32_t event)
    {
        return join({head(0x50000009), hex("00c0 0008"), be32(event), be8(id), hex("000000")});
    }
    // A registered application that gets status events.
    Client subscriber(uint8_t id)
    {
        Client client = register_app(id);
        Client other = connect_client();
        EXPECT_EQ(exchange(other, subscription(id, 16)), (std::vector<Datagram>{result(0)}));
        return client;
    }
    void status(uint32_t value) { notify_controller_status(model_.applications, value); }
    static Datagram notification(uint32_t value)
    {
        return join({head(0x5000000b), hex("00be 0004 00000010 00e6 0004"), be32(value)});
    }
};

TEST_F(Delivery, AnEventReachesItsSubscriberOnTheEventSocket)
{
    Client client = subscriber(3);
    status(1);
    turn();
    EXPECT_EQ(client.receive(), notification(1));
    EXPECT_TRUE(client.receive().empty());
    EXPECT_FALSE(client.ended());
}

TEST_F(Delivery, ASubscriptionThatFollowsTheRegistrationAtOnceIsNotBeforeIt)
{
    for (int i = 0; i < 20; ++i) {
        // The event socket is accepted while nothing was sent on it yet.
        Client events = connect_client();
        turn();
        EXPECT_TRUE(events.send(join({head(0x50000008), hex("00bf 0008 00000000 05000000")})));
        Client requests = connect_client();
        EXPECT_TRUE(requests.send(subscription(5, 16)));
        turn();
        EXPECT_EQ(requests.receive(), result(0)) << i;
    }
}

TEST_F(Delivery, AnApplicationThatIsGoneIsForgotten)
{
    {
        Client client = subscriber(3);
        status(1);
        client.hang_up(); // with an event unread
    }
    turn();
    EXPECT_FALSE(model_.applications.find(3));
    status(2);
    turn();
    Client next = subscriber(3);
    status(3);
    turn();
    EXPECT_EQ(next.receive(), notification(3));
}

TEST_F(Delivery, TheFormerHolderOfAnIdIsHungUpOn)
{
    Client former = subscriber(3);
    Client next = subscriber(3);
    status(1);
    turn();
    EXPECT_TRUE(former.receive().empty());
    EXPECT_TRUE(former.ended());
    EXPECT_EQ(next.receive(), notification(1));
}

TEST_F(Delivery, ABurstOfAHundredThousandReachesAReaderWholeAndInOrder)
{
    constexpr uint32_t EVENTS = 100'000;
    Client client = subscriber(3);
    uint32_t received = 0;
    for (uint32_t sent = 0; sent < EVENTS;) {
        for (uint32_t i = 0; i < 5'000; ++i) {
            status(sent++);
        }
        while (received < sent) {
            const Datagram event = client.receive();
            if (event.empty()) {
                ASSERT_FALSE(client.ended());
                turn();
                continue;
            }
            ASSERT_EQ(event, notification(received++));
        }
    }
    EXPECT_EQ(received, EVENTS);
    EXPECT_EQ(model_.applications.find(3)->sent(), EVENTS);
    EXPECT_EQ(model_.applications.find(3)->dropped, 0u);
}

TEST_F(Delivery, ASlowReaderLosesTheNewestAndDelaysNobody)
{
    constexpr uint32_t EVENTS = 100'000;
    Client slow = subscriber(3);
    Client quick = subscriber(4);
    uint32_t received = 0;
    for (uint32_t sent = 0; sent < EVENTS; ++sent) {
        status(sent);
        if (sent % 50 == 0) {
            turn();
            for (Datagram event; !(event = quick.receive()).empty(); ++received) {
                ASSERT_EQ(event, notification(received));
            }
        }
    }
    turn();
    for (; !quick.receive().empty(); ++received) {
    }
    EXPECT_EQ(received, EVENTS);
    Client other = connect_client();
    EXPECT_EQ(exchange(other, batch({{}})), (std::vector<Datagram>{barrier_reply(0)}));

    const Application &application = *model_.applications.find(3);
    EXPECT_EQ(application.accepted + application.dropped, EVENTS);
    EXPECT_GT(application.dropped, EVENTS / 2);
    // It may still read all that was kept: the beginning of the burst.
    const uint64_t kept = application.accepted;
    uint32_t read = 0;
    while (read < kept) {
        const Datagram event = slow.receive();
        if (event.empty()) {
            ASSERT_FALSE(slow.ended());
            turn();
            continue;
        }
        ASSERT_EQ(event, notification(read++));
    }
    EXPECT_EQ(application.waiting.datagrams(), 0u);
    status(7);
    turn();
    EXPECT_EQ(slow.receive(), notification(7));
}

TEST_F(Delivery, AnApplicationKilledInTheMiddleOfABurstTakesNothingWithIt)
{
    Client client = subscriber(3);
    Client other = subscriber(4);
    for (uint32_t sent = 0; sent < 1'000; ++sent) {
        status(sent);
        if (sent == 500) {
            turn();
            client.hang_up();
        }
    }
    turn();
    EXPECT_FALSE(model_.applications.find(3));
    uint32_t received = 0;
    while (received < 1'000) {
        const Datagram event = other.receive();
        if (event.empty()) {
            turn();
            continue;
        }
        ASSERT_EQ(event, notification(received++));
    }
    EXPECT_EQ(server_->connections(), 1u);
}

TEST_F(Delivery, EventsWaitBehindAnswersAndBothArrive)
{
    Client client = subscriber(3);
    const Datagram request = join({head(0x10000001), hex("0004 0004 1001 0000")});
    for (int i = 0; i < 1'000; ++i) {
        status(static_cast<uint32_t>(i));
        ASSERT_TRUE(client.send(request));
        turn();
    }
    int events = 0;
    int answers = 0;
    while (events + answers < 2'000) {
        const Datagram datagram = client.receive();
        if (datagram.empty()) {
            ASSERT_FALSE(client.ended());
            turn();
            continue;
        }
        ++(datagram[4] == 0x50 ? events : answers);
    }
    EXPECT_EQ(events, 1'000);
    EXPECT_EQ(answers, 1'000);
}

} // namespace
} // namespace agent::test

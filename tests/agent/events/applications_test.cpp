#include "events/applications.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "agent/daemon/messages.h"
#include "events/notification.h"
#include "openflow/wire.h"

namespace agent::test {
namespace {

constexpr Sender FIRST{1, 100};
constexpr Sender SECOND{2, 200};

Datagram register_app(uint8_t id)
{
    return join({head(0x50000008), hex("00bf 0008 00000000"), be8(id), hex("000000")});
}
Datagram subscription(uint32_t code, uint32_t event, uint8_t id)
{
    return join({head(code), hex("00c0 0008"), be32(event), be8(id), hex("000000")});
}

// What one request is answered with, sent over a connection.
Datagram ask_from(Model &model, const Datagram &request, Sender sender)
{
    Outbox out;
    answer(request, out, model, sender);
    Bytes first[1];
    return out.front(first) == 1 ? Datagram(first[0].begin(), first[0].end()) : Datagram{};
}

std::vector<Datagram> take_events(Model &model, uint8_t id)
{
    std::vector<Datagram> events;
    Outbox &waiting = model.applications.of(model.applications.find(id)->owner.connection)->waiting;
    for (Bytes first[1]; waiting.front(first) == 1; waiting.drop(1)) {
        events.emplace_back(first[0].begin(), first[0].end());
    }
    return events;
}

TEST(Applications, RegistrationIsNotAnsweredAndEndsWithItsConnection)
{
    Model model;
    EXPECT_TRUE(ask_from(model, register_app(3), FIRST).empty());
    ASSERT_TRUE(model.applications.find(3));
    EXPECT_EQ(model.applications.find(3)->owner.process, 100);
    EXPECT_FALSE(model.applications.find(4));
    EXPECT_EQ(ask_from(model, subscription(0x50000009, 16, 3), SECOND), result(0));
    model.applications.leave(FIRST.connection);
    EXPECT_FALSE(model.applications.find(3));
    EXPECT_EQ(ask_from(model, subscription(0x50000009, 16, 3), SECOND), result(NO_APPLICATION));
    EXPECT_EQ(ask_from(model, subscription(0x5000000a, 16, 3), SECOND), result(NO_APPLICATION));
}

TEST(Applications, IdsAndEventTypesHaveTheirRanges)
{
    Model model;
    for (const uint8_t id : std::initializer_list<uint8_t>{0, 12, 255}) {
        EXPECT_EQ(ask_from(model, register_app(id), FIRST), result(BAD_APPLICATION));
        EXPECT_EQ(ask_from(model, subscription(0x50000009, 2, id), FIRST), result(BAD_APPLICATION));
    }
    for (const uint8_t id : std::initializer_list<uint8_t>{1, 11}) {
        EXPECT_TRUE(ask_from(model, register_app(id), {id, 100}).empty());
        for (const uint32_t event : {1u, 2u, 63u}) {
            EXPECT_EQ(ask_from(model, subscription(0x50000009, event, id), SECOND), result(0));
        }
        for (const uint32_t event : {0u, 64u, 0xffffffffu}) {
            EXPECT_EQ(ask_from(model, subscription(0x50000009, event, id), SECOND),
                      result(BAD_EVENT));
            EXPECT_EQ(ask_from(model, subscription(0x5000000a, event, id), SECOND),
                      result(BAD_EVENT));
        }
    }
}

TEST(Applications, ARequestOfAnotherLengthOrTypeIsRefused)
{
    Model model;
    EXPECT_EQ(ask_from(model, head(0x50000008), FIRST), result(MISSING_TLV));
    EXPECT_EQ(ask_from(model, join({head(0x50000008), hex("00bf 0004 00000001")}), FIRST),
              result(BAD_TLV_LENGTH));
    EXPECT_EQ(ask_from(model, join({head(0x50000009), hex("00bf 0008 00000002 01000000")}), FIRST),
              result(MISSING_TLV));
    EXPECT_EQ(ask_from(model, join({register_app(1), hex("00")}), FIRST), result(TRAILING_BYTES));
    EXPECT_FALSE(model.applications.find(1));
}

TEST(Applications, AnotherConnectionTakesTheIdOverWithoutItsSubscriptions)
{
    Model model;
    int work = 0;
    model.applications.on_work = [&work] { ++work; };
    ask_from(model, register_app(3), FIRST);
    ask_from(model, subscription(0x50000009, 16, 3), FIRST);
    ask_from(model, register_app(3), SECOND);
    EXPECT_EQ(work, 1);
    EXPECT_EQ(model.applications.find(3)->owner.process, 200);
    EXPECT_EQ(model.applications.find(3)->subscriptions, 0u);
    EXPECT_FALSE(model.applications.of(FIRST.connection));
    EXPECT_EQ(model.applications.take_superseded(), (std::vector<uint32_t>{1}));
    EXPECT_TRUE(model.applications.take_superseded().empty());
}

TEST(Applications, ASupersededConnectionThatIsGoneIsNotToldOf)
{
    Model model;
    ask_from(model, register_app(3), FIRST);
    ask_from(model, register_app(3), SECOND);
    model.applications.leave(FIRST.connection);
    EXPECT_TRUE(model.applications.take_superseded().empty());
    EXPECT_TRUE(model.applications.find(3));
}

TEST(Applications, AConnectionIsOneApplication)
{
    Model model;
    ask_from(model, register_app(3), FIRST);
    ask_from(model, register_app(5), FIRST);
    EXPECT_FALSE(model.applications.find(3));
    EXPECT_TRUE(model.applications.find(5));
    EXPECT_TRUE(model.applications.take_superseded().empty());
}

TEST(Applications, OnlySubscribersGetAnEvent)
{
    Model model;
    ask_from(model, register_app(1), FIRST);
    ask_from(model, register_app(2), SECOND);
    ask_from(model, subscription(0x50000009, 16, 1), FIRST);
    ask_from(model, subscription(0x50000009, 2, 2), SECOND);
    notify_controller_status(model.applications, 5);
    EXPECT_EQ(take_events(model, 1),
              (std::vector<Datagram>{
                  join({head(0x5000000b), hex("00be 0004 00000010 00e6 0004 00000005")})}));
    EXPECT_TRUE(take_events(model, 2).empty());
    ask_from(model, subscription(0x5000000a, 16, 1), FIRST);
    notify_controller_status(model.applications, 6);
    EXPECT_TRUE(take_events(model, 1).empty());
}

TEST(Applications, AControllerEventCarriesInstanceAndController)
{
    Model model;
    ask_from(model, register_app(1), FIRST);
    ask_from(model, subscription(0x50000009, CONTROLLER_REMOVED, 1), FIRST);
    OfpCtrl controller{};
    controller.address_type = 2;
    controller.port = 6653;
    controller.event_value = 0x0107;
    notify_controller(model.applications, CONTROLLER_REMOVED, 258, controller);
    const std::vector<Datagram> events = take_events(model, 1);
    ASSERT_EQ(events.size(), 1u);
    const Datagram expected = join({head(0x5000000b), hex("00be 0004 00000008"), // event type
                                    hex("0004 0004 0102 0000"),                  // instance
                                    tlv(6, join({Datagram(16, 0), hex("0002"),   // address type
                                                 Datagram(30, 0), hex("19fd"),   // port
                                                 Datagram(134, 0), hex("0107"),  // event value
                                                 Datagram(6, 0)}))});
    EXPECT_EQ(to_hex(events[0]), to_hex(expected));
}

TEST(Applications, EventsBeyondTheLimitAreDroppedAndCounted)
{
    Model model;
    ask_from(model, register_app(1), FIRST);
    ask_from(model, register_app(2), SECOND);
    ask_from(model, subscription(0x50000009, 16, 1), FIRST);
    ask_from(model, subscription(0x50000009, 16, 2), SECOND);
    for (uint32_t i = 0; i < EVENTS_WAITING_MAX + 10; ++i) {
        notify_controller_status(model.applications, i);
        if (i % 100 == 0) {
            take_events(model, 2); // which reads
        }
    }
    EXPECT_EQ(model.applications.find(1)->waiting.datagrams(), EVENTS_WAITING_MAX);
    EXPECT_EQ(model.applications.find(1)->accepted, EVENTS_WAITING_MAX);
    EXPECT_EQ(model.applications.find(1)->dropped, 10u);
    EXPECT_EQ(model.applications.find(2)->accepted, EVENTS_WAITING_MAX + 10);
    EXPECT_EQ(model.applications.find(2)->dropped, 0u);
    // What is kept is the oldest, in order.
    const std::vector<Datagram> kept = take_events(model, 1);
    ASSERT_EQ(kept.size(), EVENTS_WAITING_MAX);
    EXPECT_EQ(kept.front().back(), 0);
    EXPECT_EQ(kept.back(), join({head(0x5000000b), hex("00be 0004 00000010 00e6 0004 00001fff")}));
}

TEST(Applications, TheirRecordTellsSubscriptionsAndEvents)
{
    Model model;
    const auto info = [](uint8_t id) {
        return join({head(0x1000002d), hex("00bf 0008 00000000"), be8(id), hex("000000")});
    };
    EXPECT_EQ(ask_from(model, info(7), SECOND), result(NO_APPLICATION));
    EXPECT_EQ(ask_from(model, info(12), SECOND), result(BAD_APPLICATION));
    ask_from(model, register_app(7), FIRST);
    ask_from(model, subscription(0x50000009, 63, 7), FIRST);
    ask_from(model, subscription(0x50000009, 16, 7), FIRST);
    for (uint32_t i = 0; i < EVENTS_WAITING_MAX + 3; ++i) {
        notify_controller_status(model.applications, i);
    }
    model.applications.of(1)->waiting.drop(2);
    const Datagram expected =
        join({head(0x20000027),
              tlv(195, join({hex("07 00000000000000"),                         // application
                             hex("8000000000010000"),                          // subscriptions
                             hex("0000000000000002 0000000000001ffe"),         // sent, waiting
                             hex("0000000000000003"),                          // dropped
                             Datagram(40, 0), be32(100), hex("00000000")}))}); // process, age
    Datagram answer = ask_from(model, info(7), SECOND);
    ASSERT_EQ(answer.size(), expected.size());
    EXPECT_LE(openflow::load32(&answer[answer.size() - 4]), 60u); // seconds may have passed
    std::fill(answer.end() - 4, answer.end(), uint8_t{0});
    EXPECT_EQ(to_hex(answer), to_hex(expected));
}

TEST(Applications, ThereIsNoOapService)
{
    Model model;
    EXPECT_EQ(ask_one(model, head(0x1000001e)),
              join({head(0x2000001e), hex("0085 0004 00000000")}));
    EXPECT_EQ(ask_one(model, join({head(0x1000001e), hex("00")})), result(TRAILING_BYTES));
    EXPECT_EQ(ask_one(model, join({head(0x1000001d), tlv(134, Datagram(24, 0))})),
              result(NOT_PRESENT));
    EXPECT_EQ(ask_one(model, head(0x1000001d)), result(MISSING_TLV));
}

} // namespace
} // namespace agent::test

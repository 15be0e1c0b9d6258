// What a controller asks and what it is answered.
#include "channel/conversation.h"

#include <sys/socket.h>

#include "agent/channel/controller_peer.h"

namespace agent::test {
namespace {

class ConversationTest : public ChannelTest {
protected:
    ConversationTest()
    {
        add_controller(INSTANCE, 0, peer_);
        shake_hands(peer_);
        EXPECT_TRUE(until([this] { return state().connected(); }));
    }
    uint32_t rules() const { return model_.flow_switch().table(INSTANCE, 0).rules; }
    // The answer to a barrier behind a request that has none.
    void expect_silence(const Datagram &request)
    {
        peer_.send(request);
        EXPECT_EQ(to_hex(ask(peer_, message(20, 99))), to_hex(message(21, 99)));
    }
    Datagram role_request(uint32_t role, uint64_t generation)
    {
        return message(24, 5,
                       join({be32(role), be32(0), be32(static_cast<uint32_t>(generation >> 32)),
                             be32(static_cast<uint32_t>(generation))}));
    }

    ControllerPeer peer_;
};

TEST_F(ConversationTest, FeaturesNameTheDatapathAndItsTables)
{
    EXPECT_EQ(to_hex(ask(peer_, message(5, 6))),
              to_hex(message(6, 6, hex("0102030405060708 00000000 01 00 0000 00000002 00000000"))));
}

TEST_F(ConversationTest, ConfigurationIsKept)
{
    EXPECT_EQ(ask(peer_, message(7, 1)), message(8, 1, hex("0000 0080")));
    expect_silence(message(9, 2, hex("0000 ffff")));
    EXPECT_EQ(ask(peer_, message(7, 3)), message(8, 3, hex("0000 ffff")));
}

TEST_F(ConversationTest, RulesGoIntoTheInstancesTables)
{
    expect_silence(flow_mod(8, {.in_port = 1, .table = 0}));
    EXPECT_EQ(rules(), 1u);
    const Datagram elsewhere = flow_mod(9, {.in_port = 1, .table = 7});
    EXPECT_EQ(to_hex(ask(peer_, elsewhere)), to_hex(error_reply(elsewhere, 5, 2)));
    expect_silence(flow_mod(10, {.command = 3, .table = 255}));
    EXPECT_EQ(rules(), 0u);
    expect_silence(group_mod(4));
    EXPECT_EQ(model_.flow_switch().group_count(INSTANCE), 1u);
}

TEST_F(ConversationTest, RulesGoWithTheInstancesActivity)
{
    expect_silence(flow_mod(8, {.in_port = 1, .table = 0}));
    EXPECT_EQ(rules(), 1u);
    configure(INSTANCE, [](InstanceConfig &config) { config.active = false; });
    EXPECT_EQ(rules(), 0u);
    EXPECT_TRUE(until([this] { return peer_.hung_up(); }));
}

TEST_F(ConversationTest, WhatIsNotSupportedIsRefusedByName)
{
    const struct {
        uint8_t type;
        size_t body;
        uint16_t code;
    } requests[] = {
        {4, 8, 3},   // experimenter
        {6, 24, 1},  // features reply: not for a switch
        {10, 26, 1}, // packet-in
        {13, 16, 1}, // packet-out
        {16, 32, 1}, // port-mod
        {17, 8, 1},  // table-mod
        {22, 8, 1},  // queue configuration
        {29, 8, 1},  // meter-mod
        {30, 0, 1},  // no such type
        {255, 0, 1}, //
    };
    for (const auto &request : requests) {
        const Datagram sent = message(request.type, 4, Datagram(request.body, 0));
        EXPECT_EQ(to_hex(ask(peer_, sent)), to_hex(error_reply(sent, 1, request.code)))
            << int{request.type};
    }
    EXPECT_EQ(state().errors, std::size(requests));
}

TEST_F(ConversationTest, AMessageOfAnotherLengthIsRefused)
{
    for (const Datagram &sent :
         {message(5, 1, be8(0)), message(7, 1, be8(0)), message(9, 1, be16(0)),
          message(18, 1, be32(0)), message(20, 1, be32(0)), message(24, 1, be32(0)),
          message(26, 1, be32(0)), message(28, 1, be32(0))}) {
        EXPECT_EQ(to_hex(ask(peer_, sent)), to_hex(error_reply(sent, 1, 6)));
    }
    const Datagram flow = message(14, 1);
    EXPECT_EQ(to_hex(ask(peer_, flow)), to_hex(error_reply(flow, 1, 6)));
}

TEST_F(ConversationTest, ErrorsAreNotAnswered)
{
    expect_silence(message(1, 1, hex("0001 0001")));
    expect_silence(message(1, 1));
    EXPECT_EQ(state().errors, 2u);
}

TEST_F(ConversationTest, EventMasksAreKept)
{
    EXPECT_EQ(ask(peer_, message(26, 1)),
              message(27, 1, hex("00000003 00000000 00000007 00000007 0000000f 00000000")));
    const Datagram masks = hex("00000001 00000002 00000003 00000004 00000005 00000006");
    expect_silence(message(28, 2, masks));
    EXPECT_EQ(ask(peer_, message(26, 3)), message(27, 3, masks));
}

TEST_F(ConversationTest, RolesFollowTheGeneration)
{
    EXPECT_EQ(ask(peer_, role_request(0, 0)),
              message(25, 5, hex("00000001 00000000 ffffffffffffffff")));
    EXPECT_EQ(ask(peer_, role_request(2, 10)),
              message(25, 5, hex("00000002 00000000 000000000000000a")));
    EXPECT_EQ(state().role, Role::master);
    const Datagram stale = role_request(3, 9);
    EXPECT_EQ(to_hex(ask(peer_, stale)), to_hex(error_reply(stale, 11, 0)));
    EXPECT_EQ(state().role, Role::master);
    EXPECT_EQ(ask(peer_, role_request(3, 10)),
              message(25, 5, hex("00000003 00000000 000000000000000a")));
    // Distances are counted around the end of the numbers.
    ask(peer_, role_request(2, 0x7fffffffffffffff));
    EXPECT_EQ(ask(peer_, role_request(2, 0xfffffffffffffffe))[1], 25);
    EXPECT_EQ(ask(peer_, role_request(2, 1))[1], 25);
    const Datagram bad = role_request(4, 20);
    EXPECT_EQ(to_hex(ask(peer_, bad)), to_hex(error_reply(bad, 11, 2)));
}

TEST_F(ConversationTest, ASlaveMayAskButNotChange)
{
    ask(peer_, role_request(3, 1));
    for (const Datagram &sent : {flow_mod(8, {.table = 0}), group_mod(4), message(9, 1, be32(0))}) {
        EXPECT_EQ(to_hex(ask(peer_, sent)), to_hex(error_reply(sent, 1, 10)));
    }
    EXPECT_EQ(rules(), 0u);
    EXPECT_EQ(ask(peer_, message(5, 6))[1], 6);
    ask(peer_, role_request(1, 0)); // needs no generation
    expect_silence(flow_mod(8, {.table = 0}));
    EXPECT_EQ(rules(), 1u);
}

TEST_F(ConversationTest, ThereIsOneMaster)
{
    ControllerPeer second;
    add_controller(INSTANCE, 9, second);
    shake_hands(second);
    ask(peer_, role_request(2, 1));
    ask(second, role_request(2, 2));
    EXPECT_EQ(state(INSTANCE, 9).role, Role::master);
    EXPECT_EQ(state(INSTANCE, 0).role, Role::slave);
    const Datagram rule = flow_mod(8, {.table = 0});
    EXPECT_EQ(to_hex(ask(peer_, rule)), to_hex(error_reply(rule, 1, 10)));
}

TEST_F(ConversationTest, MultipartDescribesTheSwitch)
{
    configure(INSTANCE, [](InstanceConfig &config) { config.description = "the lab"; });
    const Datagram description = ask(peer_, message(18, 2, hex("0000 0000 00000000")));
    ASSERT_EQ(description.size(), 16u + 1056);
    EXPECT_EQ(to_hex(description).substr(0, 32), "041304300000000200000000"
                                                 "00000000");
    EXPECT_STREQ(reinterpret_cast<const char *>(&description[16 + 256]), "memory switch");
    EXPECT_STREQ(reinterpret_cast<const char *>(&description[16 + 800]), "the lab");

    expect_silence(flow_mod(8, {.in_port = 1, .table = 0}));
    EXPECT_EQ(to_hex(ask(peer_, message(18, 3, hex("0003 0000 00000000")))),
              to_hex(message(19, 3,
                             hex("0003 0000 00000000 00000000 00000001"
                                 "0000000000000000 0000000000000000"))));
}

TEST_F(ConversationTest, MultipartListsThePorts)
{
    const Datagram ports = ask(peer_, message(18, 2, hex("000d 0000 00000000")));
    ASSERT_GT(ports.size(), 16u);
    EXPECT_EQ((ports.size() - 16) % 64, 0u);
    const uint32_t first = openflow::load32(&ports[16]);
    configure(INSTANCE, [=](InstanceConfig &config) { config.bound_ports = {{first, 0}}; });
    const Datagram bound = ask(peer_, message(18, 2, hex("000d 0000 00000000")));
    ASSERT_EQ(bound.size(), 16u + 64);
    EXPECT_TRUE(std::equal(bound.begin() + 16, bound.end(), ports.begin() + 16));
}

TEST_F(ConversationTest, OtherMultipartRequestsAreRefused)
{
    for (const char *const type : {"0001", "0002", "0004", "000c", "ffff"}) {
        const Datagram request = message(18, 2, join({hex(type), hex("0000 00000000")}));
        EXPECT_EQ(to_hex(ask(peer_, request)), to_hex(error_reply(request, 1, 2))) << type;
    }
    const Datagram more = message(18, 2, hex("0000 0001 00000000"));
    EXPECT_EQ(to_hex(ask(peer_, more)), to_hex(error_reply(more, 1, 13)));
    const Datagram longer = message(18, 2, hex("0000 0000 00000000 00"));
    EXPECT_EQ(to_hex(ask(peer_, longer)), to_hex(error_reply(longer, 1, 6)));
}

TEST_F(ConversationTest, SurvivesAnyBytes)
{
    uint32_t seed = 12345;
    const auto random = [&seed] { return seed = seed * 1664525 + 1013904223; };
    for (int round = 0; round < 300; ++round) {
        if (!state().connected()) {
            shake_hands(peer_);
            ASSERT_TRUE(until([this] { return state().connected(); }));
        }
        Datagram sent = message(static_cast<uint8_t>(random() >> 16) % 31, random(),
                                Datagram(random() >> 24, 0));
        for (size_t i = 8; i < sent.size(); ++i) {
            sent[i] = static_cast<uint8_t>(random() >> 24);
        }
        if (round % 100 == 99) {
            sent[3] = 3; // a length that cannot be
        }
        if (::send(peer_.fd(), sent.data(), sent.size(), MSG_NOSIGNAL) < 0) {
            continue;
        }
        event_base_loop(base_, EVLOOP_NONBLOCK);
        while (!peer_.receive().empty()) {
        }
    }
    if (!state().connected()) {
        shake_hands(peer_);
    }
    peer_.send(message(2, 0xabcdef01));
    Datagram answer;
    EXPECT_TRUE(until([&] { return (answer = peer_.receive()) == message(3, 0xabcdef01); }));
}

} // namespace
} // namespace agent::test

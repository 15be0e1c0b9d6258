#include "daemon/server.h"

#include <cerrno>
#include <list>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "agent/config/row_store.h"
#include "agent/daemon/messages.h"
#include "agent/daemon/server_fixture.h"
#include "agent/daemon/settings.h"

namespace agent::test {
namespace {

TEST_F(ServerTest, AnswersABatchOneDatagramAMessage)
{
    Client client = connect_client();
    EXPECT_EQ(exchange(client, batch({{.in_port = 1}, {.in_port = 2}})),
              (std::vector<Datagram>{barrier_reply(0), barrier_reply(1)}));
    EXPECT_EQ(server_->connections(), 1u);
    client.hang_up();
    turn();
    EXPECT_EQ(server_->connections(), 0u);
}

TEST_F(ServerTest, ARequestThatWasSentBeforeAHangUpIsCarriedOut)
{
    Client client = connect_client();
    client.send(smooth_end(CLIENT));
    client.send(batch({{}}));
    client.hang_up();
    turn();
    EXPECT_EQ(rules(), 1u);
    EXPECT_EQ(server_->connections(), 0u);
}

TEST_F(ServerTest, TellsAnEmptyDatagramFromAHangUp)
{
    Client client = connect_client();
    client.send({});
    client.send(batch({{}}));
    turn();
    EXPECT_EQ(client.receive(), result(EMPTY_DATAGRAM));
    EXPECT_EQ(client.receive(), barrier_reply(0));
    EXPECT_EQ(server_->connections(), 1u);
    client.send({});
    client.hang_up();
    turn();
    EXPECT_EQ(server_->connections(), 0u);
}

TEST_F(ServerTest, RefusesADatagramThatIsTooLongAndGoesOn)
{
    Client client = connect_client();
    EXPECT_EQ(exchange(client, Datagram(65'536, 0)), (std::vector<Datagram>{result(TOO_LONG)}));
    EXPECT_EQ(exchange(client, Datagram(65'535, 0)),
              (std::vector<Datagram>{result(NO_MESSAGE_HEAD)}));
    EXPECT_EQ(exchange(client, batch({{}})), (std::vector<Datagram>{barrier_reply(0)}));
}

TEST_F(ServerTest, SendsItsAnswersToAClientThatSendsNoMore)
{
    Client client = connect_client();
    client.send(batch({{}}));
    shutdown(client.fd(), SHUT_WR);
    turn();
    EXPECT_EQ(client.receive(), barrier_reply(0));
    EXPECT_EQ(server_->connections(), 0u);
}

TEST_F(ServerTest, ABatchIsAppliedWholeWhileTheClientsSocketIsStuffed)
{
    Client client = connect_client();
    const Datagram request = join({head(0x10000001), hex("0004 0004 1001 0000")});
    size_t asked = 0;
    for (; asked < 400; ++asked) { // more answers than a socket buffer holds
        ASSERT_TRUE(client.send(request));
        turn();
    }
    std::vector<Rule> twelve;
    for (uint32_t port = 1; port <= 12; ++port) {
        twelve.push_back({.in_port = port});
    }
    ASSERT_TRUE(client.send(batch(twelve)));
    turn();
    EXPECT_EQ(rules(), 12u);

    std::vector<Datagram> answers;
    for (Datagram answer; !(answer = client.receive()).empty() || answers.size() < asked + 12;) {
        ASSERT_FALSE(client.ended());
        if (answer.empty()) {
            turn();
        } else {
            answers.push_back(answer);
        }
    }
    ASSERT_EQ(answers.size(), asked + 12);
    for (uint32_t i = 0; i < 12; ++i) {
        EXPECT_EQ(answers[asked + i], barrier_reply(i));
    }
}

// Clients that do not read are held back early.
class NarrowServerTest : public ServerTest {
protected:
    static constexpr size_t OWN = size_t{64} << 10;
    static constexpr size_t ALL = size_t{256} << 10;
    static constexpr size_t SCARCE = size_t{4} << 10;
    NarrowServerTest() : ServerTest({.own = OWN, .all = ALL, .scarce = SCARCE}) {}

    // Sends until the client's own socket is full and the server takes nothing more; how many.
    size_t stuff(Client &client)
    {
        const Datagram request = join({head(0x10000001), hex("0004 0004 1001 0000")});
        size_t sent = 0;
        while (sent < 100'000 && client.send(request)) {
            ++sent;
            if (sent % 64 == 0) {
                turn();
            }
        }
        return sent;
    }
};

TEST_F(NarrowServerTest, AClientThatNeverReadsDelaysNobodyAndHoldsBoundedMemory)
{
    Client deaf = connect_client();
    const size_t sent = stuff(deaf);
    turn();
    EXPECT_LT(sent, 100'000u);
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_LT(model_.counters.datagrams, sent); // the rest waits in the client's own buffer

    Client other = connect_client();
    EXPECT_EQ(exchange(other, batch({{}})), (std::vector<Datagram>{barrier_reply(0)}));
}

TEST_F(NarrowServerTest, WhileAllTogetherHoldTooMuchEachMayHoldLess)
{
    std::list<Client> deaf;
    std::vector<size_t> sent;
    for (int i = 0; i < 8; ++i) {
        deaf.push_back(connect_client());
        sent.push_back(stuff(deaf.back()));
        ASSERT_LT(sent.back(), 100'000u);
    }
    EXPECT_GT(sent.front(), OWN / 24);
    EXPECT_LT(sent.back(), sent.front()); // the others took what there is
    const uint64_t served = model_.counters.datagrams;

    // Once there is room again, the last one goes on although it has read nothing itself.
    while (deaf.size() > 1) {
        deaf.pop_front();
    }
    turn();
    EXPECT_GT(model_.counters.datagrams, served);
    EXPECT_GT(stuff(deaf.back()) + sent.back(), OWN / 24);
}

TEST_F(ServerTest, AHundredThousandRulesSentBeforeTheFirstAnswerIsReadAreAllAnswered)
{
    constexpr uint32_t RULES = 100'000;
    Client client = connect_client();
    const Datagram accepted = batch({{}});
    const Datagram refused = batch({{.table = 9}});
    for (uint32_t sent = 0; sent < RULES; ++sent) {
        while (!client.send(sent % 2 == 0 ? accepted : refused)) {
            ASSERT_EQ(errno, EAGAIN);
            turn();
        }
    }
    turn();
    for (uint32_t answered = 0; answered < RULES; ++answered) {
        Datagram answer = client.receive();
        if (answer.empty()) {
            turn();
            answer = client.receive();
        }
        if (answered % 2 == 1) {
            ASSERT_EQ(answer, error_reply(flow_mod(0, {.table = 9}), 5, 2));
            answer = client.receive();
        }
        if (answer.empty()) {
            turn();
            answer = client.receive();
        }
        ASSERT_EQ(answer, barrier_reply(0)) << answered;
    }
    EXPECT_TRUE(client.receive().empty());
}

TEST_F(ServerTest, AHundredThousandRulesSentWithoutWaitingAreAllAnswered)
{
    constexpr uint32_t RULES = 100'000;
    Client client = connect_client();
    Datagram request = batch({{}});
    const auto number = [&request](uint32_t rule) {
        // The transaction ids of the flow-mod and its barrier, and the input port.
        constexpr size_t MESSAGE = 8 + 20 + 4;
        for (const size_t at : {MESSAGE + 4, MESSAGE + 56, MESSAGE + 72 + 4 + 4}) {
            const Datagram value = be32(at == MESSAGE + 56 ? rule + 1 : rule);
            std::copy(value.begin(), value.end(), &request[at]);
        }
    };
    uint32_t sent = 0;
    uint32_t answered = 0;
    while (answered < RULES) {
        // The client writes as much as it can before it reads anything.
        for (; sent < RULES; ++sent) {
            number(sent);
            if (!client.send(request)) {
                break;
            }
        }
        turn();
        for (Datagram answer; !(answer = client.receive()).empty(); ++answered) {
            ASSERT_EQ(answer, barrier_reply(answered));
        }
        ASSERT_FALSE(client.ended());
    }
    EXPECT_EQ(rules(), RULES);
}

TEST_F(ServerTest, ServesTwoHundredClientsAtOnce)
{
    std::vector<Client> clients;
    for (uint32_t i = 0; i < 200; ++i) {
        clients.push_back(connect_client());
        ASSERT_TRUE(clients.back().connected());
        ASSERT_TRUE(clients.back().send(batch({{.in_port = i + 1}})));
    }
    turn();
    EXPECT_EQ(server_->connections(), 200u);
    EXPECT_EQ(rules(), 200u);
    for (Client &client : clients) {
        EXPECT_EQ(client.receive(), barrier_reply(0));
    }
    clients.clear();
    turn();
    EXPECT_EQ(server_->connections(), 0u);
}

TEST_F(ServerTest, AcceptsAgainOnceDescriptorsAreThere)
{
    std::vector<Client> clients;
    for (int i = 0; i < 8; ++i) {
        clients.push_back(connect_client());
        clients.back().send(batch({{.in_port = static_cast<uint32_t>(i + 1)}}));
    }
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const int next_free = dup(listener_);
    close(next_free);
    rlimit few = before;
    few.rlim_cur = static_cast<rlim_t>(next_free) + 3;
    setrlimit(RLIMIT_NOFILE, &few);
    event_base_loop(base_, EVLOOP_NONBLOCK);
    EXPECT_EQ(server_->connections(), 3u);

    clients[0].hang_up(); // the server's end, too, is free then
    turn();
    EXPECT_EQ(server_->connections(), 4u);
    setrlimit(RLIMIT_NOFILE, &before);
    for (int i = 0; i < 50 && server_->connections() < 7; ++i) {
        event_base_loop(base_, EVLOOP_ONCE);
    }
    EXPECT_EQ(server_->connections(), 7u);
    turn();
    EXPECT_EQ(rules(), 8u);
}

// ---- Configuration

Datagram set_instance(uint16_t id) { return join({head(1), instance_filter(id)}); }
Datagram instance_is_there(uint16_t id) { return join({head(0x10000001), instance_key(id)}); }

class ConfiguringClients : public ServerTest {
protected:
    ConfiguringClients()
    {
        EXPECT_EQ(attach(model_.configuration(), rows_), "");
        for (uint16_t id = 1; id <= 20; ++id) {
            clients_.push_back(connect_client());
            EXPECT_TRUE(clients_.back().send(set_instance(id)));
        }
    }
    std::vector<Datagram> answers()
    {
        std::vector<Datagram> answers;
        for (Client &client : clients_) {
            answers.push_back(client.receive());
        }
        return answers;
    }

    Rows rows_;
    std::vector<Client> clients_;
};

TEST_F(ConfiguringClients, ThatAreReadyTogetherShareACommit)
{
    turn();
    EXPECT_EQ(answers(), std::vector<Datagram>(20, result(0)));
    EXPECT_EQ(rows_.writes, 1u);
    EXPECT_NE(model_.instance(20), nullptr);
}

TEST_F(ConfiguringClients, AreAllRefusedWhenTheirCommitFailsAndMayTryAgain)
{
    rows_.fails = true;
    turn();
    EXPECT_EQ(answers(), std::vector<Datagram>(20, result(NOT_STORED)));
    EXPECT_EQ(model_.counters.refused, 20u);
    EXPECT_EQ(model_.instance(20), nullptr);
    rows_.fails = false;
    EXPECT_EQ(exchange(clients_[0], set_instance(1)), std::vector<Datagram>{result(0)});
    EXPECT_NE(model_.instance(1), nullptr);
}

TEST_F(ConfiguringClients, ReadBackWhatTheySetWithoutWaitingForTheAnswer)
{
    turn();
    answers();
    Client &client = clients_[0];
    for (uint16_t id = 101; id < 110; ++id) {
        ASSERT_TRUE(client.send(instance_is_there(id)));
        ASSERT_TRUE(client.send(set_instance(id)));
        ASSERT_TRUE(client.send(instance_is_there(id)));
    }
    turn();
    for (uint16_t id = 101; id < 110; ++id) {
        EXPECT_EQ(client.receive(), hex("0001 0004 20000002 0005 0004 0000 0000"));
        EXPECT_EQ(client.receive(), result(0));
        EXPECT_EQ(client.receive(), hex("0001 0004 20000002 0005 0004 0001 0000"));
    }
}

TEST_F(ConfiguringClients, ThatHangUpBeforeTheCommitHaveTheirRequestsCarriedOut)
{
    clients_.clear();
    turn();
    EXPECT_NE(model_.instance(1), nullptr);
    EXPECT_NE(model_.instance(20), nullptr);
    EXPECT_EQ(server_->connections(), 0u);
}

} // namespace
} // namespace agent::test

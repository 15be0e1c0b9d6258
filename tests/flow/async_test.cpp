#include "flow/async.h"

#include <functional>

#include "double/memory.h"
#include "double/sweep.h"
#include "flow/rules.h"

using namespace test;

namespace {

constexpr uint32_t ok = OFP_RC_OK;
constexpr uint32_t failed = OFP_RC_FAILED;

struct Report {
    uint32_t client_id;
    uint8_t table_id;
    uint32_t in_port;
    uint64_t result;
    bool operator==(const Report &) const = default;
};
std::vector<Report> reports;
std::function<void()> during;

void take(uint32_t client_id, uint8_t table_id, const OfpFlowItem *item, uint64_t result)
{
    reports.push_back({client_id, table_id, item->match.in_port, result});
    if (during)
        during();
}
void take_not(uint32_t, uint8_t, const OfpFlowItem *, uint64_t) { ADD_FAILURE(); }

// The transaction id of the last rule sent.
uint32_t last_xid() { return openflow_messages(platform.sent.back())[0].u32(4); }

uint32_t add(uint32_t in_port, uint16_t client = 4096)
{
    Rule rule(in_port);
    return OFP_AsyncAddFlowRule(client, 200, &rule.item);
}

class Async : public FlowTest {
protected:
    Async()
    {
        reports.clear();
        during = nullptr;
    }
    ~Async() override
    {
        for (int32_t socket : opened_)
            OFP_AsyncFini(socket);
    }
    int32_t open(uint16_t client = 4096, OfpAsyncCallback callback = take)
    {
        const int32_t socket = OFP_AsyncInit(client, callback);
        EXPECT_GE(socket, 0);
        opened_.insert(socket);
        return socket;
    }
    void close(int32_t socket)
    {
        OFP_AsyncFini(socket);
        opened_.erase(socket);
    }
    void dispatch(int32_t socket, const Bytes &reply)
    {
        platform.reply(reply);
        OFP_AsyncDispatch(socket);
    }

private:
    std::set<int32_t> opened_;
};

} // namespace

TEST_F(Async, InitOpensOneChannelAClient)
{
    const int32_t socket = open(4096);
    EXPECT_EQ(platform.sequence(), "SOCK_Socket SOCK_SetOption SOCK_SetOption SOCK_Connect");
    EXPECT_EQ(OFP_AsyncInit(4096, take_not), socket);
    EXPECT_EQ(platform.sockets_opened, 1u);
    ASSERT_EQ(add(1), ok);
    dispatch(socket, barrier_reply(last_xid()));
    EXPECT_EQ(reports.size(), 1u); // the first callback
    EXPECT_NE(open(4099), socket);
}

TEST_F(Async, OtherClientsAreRefusedUnseen)
{
    for (uint16_t client : {uint16_t{0}, uint16_t{4095}, uint16_t{4098}, uint16_t{4100}}) {
        EXPECT_EQ(OFP_AsyncInit(client, take), -1);
        EXPECT_EQ(add(1, client), failed);
    }
    EXPECT_TRUE(platform.calls().empty());
}

TEST_F(Async, FailuresOfInit)
{
    expect_failures_handled({.prepare = [] {},
                             .run =
                                 [] {
                                     const int32_t socket = OFP_AsyncInit(4096, take);
                                     OFP_AsyncFini(socket);
                                     return socket >= 0 ? 0u : 1u;
                                 }},
                            {{"SOCK_Socket", 1},
                             {"SOCK_SetOption", 1},
                             {"SOCK_Connect", 1},
                             {"SOCK_Close", 0},
                             {"SERVICE_GetStatus", 0},
                             {"SERVICE_Start", 1},
                             {"SERVICE_BatchStart", 1},
                             {"DEV_GetAllNodes", 1},
                             {"malloc", 1}});
}

TEST_F(Async, ARuleCarriesItsTransactionAndIsNotWaitedFor)
{
    open();
    ASSERT_EQ(add(7), ok);
    EXPECT_GE(last_xid(), 0x80000001u);
    const auto messages = openflow_messages(platform.sent[0]);
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[1].u32(4), messages[0].u32(4)); // the barrier too
    EXPECT_EQ(platform.sequence("SOCK_Rec"), "");
    const uint32_t first = last_xid();
    ASSERT_EQ(add(8), ok);
    EXPECT_EQ(last_xid(), first + 1);
}

TEST_F(Async, ModifyAndDeleteDifferInTheirCommand)
{
    open();
    Rule rule(1);
    EXPECT_EQ(OFP_AsyncModifyFlowRule(4096, 200, &rule.item), ok);
    for (int16_t strict : {int16_t{0}, int16_t{1}, int16_t{2}})
        EXPECT_EQ(OFP_AsyncDelFlowRule(4096, 200, &rule.item, strict), ok);
    std::vector<uint8_t> commands;
    for (const Bytes &datagram : platform.sent)
        commands.push_back(openflow_messages(datagram)[0].u8(25));
    EXPECT_EQ(commands, std::vector<uint8_t>({2, 3, 4, 3}));
}

TEST_F(Async, AnErrorAndItsBarrierAreOneReport)
{
    const int32_t socket = open();
    ASSERT_EQ(add(7), ok);
    dispatch(socket, error_reply(last_xid(), 5, 3));
    EXPECT_TRUE(reports.empty());
    dispatch(socket, barrier_reply(last_xid()));
    EXPECT_EQ(reports, std::vector<Report>({{4096, 200, 7, OFP_RC_STATE}}));
    dispatch(socket, barrier_reply(last_xid())); // no second time
    EXPECT_EQ(reports.size(), 1u);
}

TEST_F(Async, ABarrierAloneReportsSuccess)
{
    const int32_t socket = open(4099);
    ASSERT_EQ(add(9, 4099), ok);
    dispatch(socket, barrier_reply(last_xid()));
    EXPECT_EQ(reports, std::vector<Report>({{4099, 200, 9, 0}}));
}

TEST_F(Async, RepliesInAnyOrderFindTheirRules)
{
    const int32_t socket = open();
    std::vector<uint32_t> xids;
    for (uint32_t port = 1; port <= 4; ++port) {
        ASSERT_EQ(add(port), ok);
        xids.push_back(last_xid());
    }
    for (size_t i : {3u, 1u, 0u, 2u})
        dispatch(socket, barrier_reply(xids[i]));
    ASSERT_EQ(reports.size(), 4u);
    EXPECT_EQ(reports[0].in_port, 4u);
    EXPECT_EQ(reports[3].in_port, 3u);
    ASSERT_EQ(add(5), ok); // the emptied list takes new ones
    dispatch(socket, barrier_reply(last_xid()));
    EXPECT_EQ(reports.back().in_port, 5u);
}

TEST_F(Async, ClientsAreToldApart)
{
    const int32_t one = open(4096), other = open(4097);
    ASSERT_EQ(add(1, 4096), ok);
    const uint32_t xid = last_xid();
    dispatch(other, barrier_reply(xid));
    EXPECT_TRUE(reports.empty());
    ASSERT_EQ(add(2, 4097), ok);
    dispatch(other, barrier_reply(last_xid()));
    dispatch(one, barrier_reply(xid));
    EXPECT_EQ(reports, std::vector<Report>({{4097, 200, 2, 0}, {4096, 200, 1, 0}}));
}

TEST_F(Async, UnexpectedDatagramsAreIgnored)
{
    const int32_t socket = open();
    ASSERT_EQ(add(1), ok);
    const uint32_t xid = last_xid();
    for (const Bytes &reply :
         {barrier_reply(1), error_reply(1, 5, 3), hex("04 02 0008") + be32(xid),
          barrier_reply(xid).slice(0, 7), error_reply(xid, 5, 3).slice(0, 11), hex("04")})
        dispatch(socket, reply);
    OFP_AsyncDispatch(socket); // nothing comes
    OFP_AsyncDispatch(-1);
    EXPECT_TRUE(reports.empty());
    dispatch(socket, barrier_reply(xid));
    EXPECT_EQ(reports[0].result, 0u);
}

TEST_F(Async, WithoutACallbackRulesAreSentAndNotTracked)
{
    const int32_t socket = open(4096, nullptr);
    EXPECT_EQ(add(1), ok);
    EXPECT_EQ(platform.sent.size(), 1u);
    dispatch(socket, barrier_reply(last_xid()));
    EXPECT_TRUE(reports.empty());
}

TEST_F(Async, FiniDropsTheRulesOfItsClientAlone)
{
    const int32_t one = open(4096, take_not), other = open(4099);
    ASSERT_EQ(add(1, 4096), ok);
    ASSERT_EQ(add(2, 4099), ok);
    const uint32_t xid = last_xid();
    close(one);
    EXPECT_EQ(add(3, 4096), failed); // no channel
    dispatch(other, barrier_reply(xid));
    EXPECT_EQ(reports, std::vector<Report>({{4099, 200, 2, 0}}));
    OFP_AsyncFini(-1);
}

TEST_F(Async, FiniClosesASocketThatIsNoClients)
{
    const int32_t socket = open();
    const int32_t foreign = platform.open_socket();
    OFP_AsyncFini(foreign);
    EXPECT_EQ(platform.open_sockets(), std::set<int32_t>({socket}));
}

TEST_F(Async, ACallbackMaySendAndMayEndItsChannel)
{
    const int32_t socket = open();
    ASSERT_EQ(add(1), ok);
    const uint32_t first = last_xid();
    ASSERT_EQ(add(2), ok);
    during = [&] { EXPECT_EQ(add(3), ok); };
    dispatch(socket, barrier_reply(first));
    EXPECT_EQ(platform.sent.size(), 3u);
    during = [&] { close(socket); };
    dispatch(socket, barrier_reply(last_xid()));
    EXPECT_EQ(reports.size(), 2u);
    EXPECT_TRUE(platform.open_sockets().empty());
}

TEST_F(Async, ShortMemoryIsToldAfterTheRuleWentOut)
{
    for (size_t nth = 1;; ++nth) {
        open();
        memory::fail_at(nth);
        const uint32_t code = add(1);
        const bool was_short = memory::has_failed();
        memory::fail_at(0);
        EXPECT_EQ(platform.sent.size(), nth);
        if (!was_short) {
            EXPECT_GE(nth, 4u); // an entry and a copy with blocks of its own
            EXPECT_EQ(code, ok);
            break;
        }
        EXPECT_EQ(code, OFP_RC_NO_RESOURCE);
    }
}

TEST_F(Async, TransactionIdsStayInTheUpperHalf)
{
    EXPECT_EQ(ofp::transaction_after(0x80000000), 0x80000001u);
    EXPECT_EQ(ofp::transaction_after(0xfffffffe), 0xffffffffu);
    EXPECT_EQ(ofp::transaction_after(0xffffffff), 0x80000000u);
    in_fresh_process([] {
        platform.reply(barrier_reply(0));
        EXPECT_EQ(OFP_SmoothStart(4096, smooth_id, smooth_mode), ok);
        const int32_t socket = OFP_AsyncInit(4096, nullptr);
        EXPECT_EQ(add(1), ok);
        EXPECT_EQ(last_xid(), 0x80000001u); // the first of a process
        OFP_AsyncFini(socket);
    });
}

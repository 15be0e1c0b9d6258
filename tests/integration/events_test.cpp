// Applications and their events over the library's calls.
#include <csignal>
#include <cstring>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include "integration/agent_test.h"
#include "integration/exchange.h"

namespace integration {
namespace {

using namespace std::chrono_literals;

constexpr uint16_t INSTANCE = 9;
constexpr uint32_t APPLICATION = 3;

struct Delivered {
    uint32_t type;
    OfpCtrlEvent event;
    uint32_t value;
};
std::vector<Delivered> delivered;

uint32_t take(uint32_t type, void *record, uint32_t value)
{
    Delivered event{type, {}, value};
    if (type != OFP_EVENT_CTRL_STATUS) {
        std::memcpy(&event.event, record, sizeof event.event);
    }
    delivered.push_back(event);
    return 0;
}

class Events : public AgentTest {
protected:
    void SetUp() override
    {
        delivered.clear();
        start_agent({});
        ASSERT_EQ(OFP_set_Instance(1, INSTANCE, 0), 0u);
        ASSERT_EQ(OFP_set_ActiveInst(INSTANCE, 1), 0u);
    }
    void TearDown() override { OFP_Fini(); }

    // Registers and subscribes.
    int listen_to(std::initializer_list<uint32_t> types)
    {
        const int socket = OFP_Init(APPLICATION);
        EXPECT_GE(socket, 0);
        for (const uint32_t type : types) {
            EXPECT_EQ(OFP_RegEvent(type, take), 0u);
        }
        return socket;
    }
    static OfpCtrlCfg controller(uint8_t id, uint16_t port = 1)
    {
        OfpCtrlCfg config{};
        config.instance_id = INSTANCE;
        config.address_type = 2;
        config.address[0] = 0x0100007f;
        config.port = port;
        config.controller_id = id;
        return config;
    }
    static void configure(uint8_t id)
    {
        const OfpCtrlCfg config = controller(id);
        ASSERT_EQ(OFP_set_CtrlCfg(&config, 1), 0u);
    }
    static void unconfigure(uint8_t id)
    {
        const OfpCtrlCfg config = controller(id);
        ASSERT_EQ(OFP_set_CtrlCfg(&config, 0), 0u);
    }
    // Dispatches until so many events were delivered.
    static bool dispatch(int socket, size_t count)
    {
        return within(20s, [=] {
            EXPECT_EQ(OFP_Dispatch(socket), 0u);
            return delivered.size() >= count;
        });
    }
    static OfpAppPktStats info()
    {
        OfpAppPktStats stats{};
        EXPECT_EQ(OFP_get_AppInfo(APPLICATION, &stats), 0u);
        return stats;
    }
};

TEST_F(Events, ASubscriptionThatFollowsTheRegistrationAtOnceIsAccepted)
{
    for (int i = 0; i < 300; ++i) {
        ASSERT_GE(OFP_Init(APPLICATION), 0);
        ASSERT_EQ(OFP_RegEvent(OFP_EVENT_CTRL_STATUS, take), 0u) << i;
        OFP_Fini();
    }
}

TEST_F(Events, ControllersAreToldOfWithTheirInstance)
{
    const int socket = listen_to({2, 8, 16});
    configure(5);
    unconfigure(5);
    ASSERT_TRUE(dispatch(socket, 4));
    EXPECT_EQ(delivered[0].type, 2u);
    EXPECT_EQ(delivered[0].event.instance_id, INSTANCE);
    EXPECT_EQ(delivered[0].event.address_type, 2u);
    EXPECT_EQ(delivered[0].event.address[0], 0x0100007fu);
    EXPECT_EQ(delivered[0].event.address[1], 0u);
    EXPECT_EQ(delivered[0].event.value, 5u);
    EXPECT_EQ(delivered[1].type, 16u);
    EXPECT_EQ(delivered[1].value, 0u);
    EXPECT_EQ(delivered[2].type, 8u);
    EXPECT_EQ(delivered[3].type, 16u);
}

TEST_F(Events, AfterDeregistrationNothingMoreComes)
{
    const int socket = listen_to({2, 8});
    EXPECT_EQ(info().value_u64_8[0], (1u << 2) | (1u << 8));
    EXPECT_EQ(OFP_DeRegEvent(8), 0u);
    EXPECT_EQ(info().value_u64_8[0], 1u << 2);
    EXPECT_EQ(OFP_RegEvent(2, take), 0u); // its callback again
    configure(5);
    unconfigure(5);
    configure(6);
    ASSERT_TRUE(dispatch(socket, 2));
    EXPECT_EQ(delivered[1].event.value, 6u);
}

TEST_F(Events, TheRegistrationEndsWithTheSocket)
{
    listen_to({2});
    EXPECT_EQ(info().value_u32_80, static_cast<uint32_t>(getpid()));
    OFP_Fini();
    OfpAppPktStats stats{};
    EXPECT_TRUE(within(5s, [&] { return OFP_get_AppInfo(APPLICATION, &stats) == 0x42300150; }));
}

TEST_F(Events, AnApplicationKilledInTheMiddleOfABurstHarmsNobody)
{
    const pid_t child = fork();
    if (child == 0) {
        if (OFP_Init(4) >= 0 && OFP_RegEvent(16, take) == 0) {
            pause(); // reads nothing
        }
        _exit(1);
    }
    ASSERT_GT(child, 0);
    OfpAppPktStats stats{};
    ASSERT_TRUE(
        within(5s, [&] { return OFP_get_AppInfo(4, &stats) == 0 && stats.value_u64_8[0]; }));
    const int socket = listen_to({16});
    for (uint8_t i = 0; i < 60; ++i) {
        configure(i);
        if (i == 30) {
            kill(child, SIGKILL);
            waitpid(child, nullptr, 0);
        }
    }
    EXPECT_TRUE(dispatch(socket, 60));
    EXPECT_TRUE(within(5s, [&] { return OFP_get_AppInfo(4, &stats) == 0x42300150; }));
}

TEST_F(Events, AnAgentThatGoesAwayIsNoticedAndTheNextOneServesAgain)
{
    int socket = listen_to({2});
    stop_agent(SIGKILL);
    pollfd ready{socket, POLLIN, 0};
    EXPECT_EQ(poll(&ready, 1, 5000), 1);
    EXPECT_TRUE(ready.revents & POLLHUP);
    EXPECT_EQ(OFP_Dispatch(socket), 0u);
    OFP_Fini();
    start_agent({});
    socket = listen_to({2});
    configure(5);
    EXPECT_TRUE(dispatch(socket, 1));
}

} // namespace
} // namespace integration

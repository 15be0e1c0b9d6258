#include "flow/client.h"

#include <cerrno>

#include "double/platform.h"
#include "ipc/channel.h"

using namespace test;

namespace {

class Client : public PlatformTest {};

} // namespace

TEST_F(Client, Ids)
{
    for (uint32_t id = 0; id < 0x10000; ++id)
        EXPECT_EQ(ofp::is_client(static_cast<uint16_t>(id)),
                  id == 4096 || id == 4097 || id == 4099);
}

TEST_F(Client, ConnectsWithin30Seconds)
{
    const ofp::Channel channel(ofp::connect_client(4096));
    EXPECT_TRUE(channel.is_open());
    const std::vector<Call> options = platform.calls("SOCK_SetOption");
    ASSERT_EQ(options.size(), 2u);
    EXPECT_EQ(options[0].bytes, hex("1e00000000000000 0000000000000000"));
    EXPECT_EQ(options[1].bytes, options[0].bytes);
}

TEST_F(Client, Client4097ConnectsInItsContainerWithoutTimeOut)
{
    const ofp::Channel channel(ofp::connect_client(4097));
    EXPECT_TRUE(channel.is_open());
    const std::vector<Call> options = platform.calls("SOCK_SetOption");
    ASSERT_EQ(options.size(), 1u);
    EXPECT_EQ(options[0].arguments[2], 16u);
    EXPECT_EQ(options[0].bytes, hex("05000000"));
}

TEST_F(Client, StartsTheDaemonFirst)
{
    platform.daemon_runs(false);
    const ofp::Channel channel(ofp::connect_client(4099));
    EXPECT_TRUE(channel.is_open());
    EXPECT_EQ(platform.sequence("SERVICE_"), "SERVICE_GetStatus SERVICE_Start");
}

TEST_F(Client, OpensNoSocketWhenTheDaemonCannotBeStarted)
{
    platform.daemon_runs(false);
    platform.next("SERVICE_Start", {9});
    EXPECT_EQ(ofp::connect_client(4097), -1);
    EXPECT_EQ(platform.sockets_opened, 0u);
}

TEST_F(Client, FailsWhenNobodyListens)
{
    for (uint16_t client : {uint16_t{4096}, uint16_t{4097}}) {
        platform.next("SOCK_Connect", {-1, ECONNREFUSED});
        EXPECT_EQ(ofp::connect_client(client), -1);
    }
}

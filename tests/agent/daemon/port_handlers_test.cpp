#include <gtest/gtest.h>

#include "agent/daemon/messages.h"
#include "agent/daemon/settings.h"

namespace agent::test {
namespace {

constexpr uint32_t NO_SUCH_PORT = 9999;

Datagram bound(uint32_t port, uint16_t instance, uint32_t value = 0)
{
    return tlv(142, join({be32(port), be32(value), be16(instance), hex("0000")}));
}

class Ports : public testing::Test {
protected:
    Ports()
    {
        send(1, instance_filter(5));
        send(1, instance_filter(6));
    }
    Datagram send(uint32_t code, const Datagram &tlvs)
    {
        return ask_one(model, join({head(code), tlvs}));
    }

    Model model;
};

TEST_F(Ports, BelongToOneInstanceAtMost)
{
    EXPECT_EQ(send(33, bound(PORT, 5, 12)), result(0));
    EXPECT_EQ(model.instance(5)->bound_ports, (std::map<uint32_t, uint32_t>{{PORT, 12}}));
    EXPECT_EQ(send(33, bound(PORT, 5, 13)), result(0));
    EXPECT_EQ(model.instance(5)->bound_ports.at(PORT), 13u);
    EXPECT_EQ(send(33, bound(PORT, 6)), result(PORT_IN_USE));
    EXPECT_EQ(send(34, bound(PORT, 6)), result(NOT_BOUND));
    EXPECT_EQ(send(34, bound(PORT, 5)), result(0));
    EXPECT_EQ(send(34, bound(PORT, 5)), result(NOT_BOUND));
    EXPECT_EQ(send(33, bound(PORT, 6)), result(0));
}

TEST_F(Ports, OfAnInstanceThatIsRemovedAreFree)
{
    send(33, bound(PORT, 5));
    send(2, instance_filter(5));
    EXPECT_EQ(send(33, bound(PORT, 6)), result(0));
}

TEST_F(Ports, ThatTheSwitchDoesNotHaveAreRefused)
{
    EXPECT_EQ(send(33, bound(NO_SUCH_PORT, 5)), result(NO_PORT));
    EXPECT_EQ(send(34, bound(NO_SUCH_PORT, 5)), result(NO_PORT));
    EXPECT_EQ(send(33, bound(0, 5)), result(NO_PORT));
    EXPECT_EQ(send(33, bound(PORT, 7)), result(NO_INSTANCE));
    EXPECT_EQ(send(42, tlv(182, be32(NO_SUCH_PORT))), result(NO_PORT));
    EXPECT_EQ(send(43, tlv(182, be32(NO_SUCH_PORT))), result(NO_PORT));
}

TEST_F(Ports, AreShutDownAndStarted)
{
    EXPECT_EQ(send(42, tlv(182, be32(PORT))), result(0));
    EXPECT_EQ(send(42, tlv(182, be32(PORT))), result(0));
    EXPECT_EQ(model.configuration().global().shut_down_ports, std::set<uint32_t>{PORT});
    EXPECT_EQ(send(43, tlv(182, be32(PORT))), result(0));
    EXPECT_TRUE(model.configuration().global().shut_down_ports.empty());
    EXPECT_EQ(send(43, tlv(182, be32(PORT))), result(0));
}

} // namespace
} // namespace agent::test

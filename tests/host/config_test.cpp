/* The described switch: built in, from a file, and what is said of a wrong file. */
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

#include "fixture.h"
#include "ofp/result.h"

using namespace host_test;

namespace {

class Config : public HostTest {
protected:
    /* What is said of the file, without its path. */
    void expect_wrong(const std::string &text, const std::string &error) const
    {
        describe(text);
        std::string full = path("host.toml") + ":" + error;
        in_child([&] {
            EXPECT_EQ(HOST_GetConfig(), nullptr) << text;
            EXPECT_EQ(HOST_LastError(), full) << text;
        });
    }
};

TEST_F(Config, WithoutAFileOneNodeIsMasterSelfAndController)
{
    in_child([] {
        uint32_t count = 0;
        uint8_t mac[6] = {};
        uint16_t *nodes = DEV_GetAllNodes(&count);
        ASSERT_NE(nodes, nullptr);
        ASSERT_EQ(count, 1u);
        EXPECT_EQ(nodes[0], 0);
        free(nodes);
        EXPECT_EQ(DEV_GetSystemMaster(), 0);
        EXPECT_EQ(DEV_GetSelf(), 0);
        EXPECT_EQ(DEV_IsController(), 1);
        EXPECT_EQ(IF_IsNodeUp(0), 1);
        EXPECT_EQ(IF_IsNodeUp(1), 0);
        EXPECT_EQ(SERVICE_IsPhase4Over(0), 1u);
        EXPECT_EQ(ZONE_GetCurrentZone(), 0u);
        EXPECT_EQ(ZONE_IsContainer(0), 0);
        EXPECT_EQ(ZONE_GetCurrentContainer(), 0u);
        EXPECT_EQ(LIP_GetLocalLip(), 0);
        EXPECT_EQ(VLAN_GetMinVlanID(), 1);
        EXPECT_EQ(MAC_GetBridgeAddress(mac), 0u);
        EXPECT_EQ(mac[0] & 3, 2) << "locally administered, no group";
        EXPECT_STREQ(HOST_GetConfig()->path, "");
    });
}

TEST_F(Config, WithoutAFileThereAre24Ports)
{
    in_child([] {
        const HostConfig *config = HOST_GetConfig();
        ASSERT_NE(config, nullptr);
        ASSERT_EQ(config->interface_count, 24u);
        EXPECT_STREQ(config->interfaces[0].name, "GE1/0/1");
        EXPECT_STREQ(config->interfaces[23].name, "GE1/0/24");
        EXPECT_EQ(config->interfaces[23].index, 24u);
    });
}

constexpr const char *chassis = R"(
[device]
self = 2
master = 1
lip = 0x102
bridge_mac = "00:11:22:AA:bb:cc"
phase4_over = false
acl_resource = [1, 2, 3, 4, 5, 255]

[context]
zone = 3
container = 4000000000
containers = [3, 5]

[[node]]
id = 1
[[node]]
id = 2
controller = true
[[node]]
id = 17
up = false

[[interface]]
index = 200
name = "XGE2/0/1"
type = 39
node = 17
up = false

[[interface]]
index = 7
name = "GE1/0/9"
count = 3
)";

TEST_F(Config, FileDescribesNodesAndContexts)
{
    describe(chassis);
    in_child([] {
        uint32_t count = 0;
        uint8_t mac[6] = {};
        uint16_t *nodes = DEV_GetAllNodes(&count);
        ASSERT_NE(nodes, nullptr) << HOST_LastError();
        ASSERT_EQ(count, 3u);
        EXPECT_EQ(nodes[0], 1);
        EXPECT_EQ(nodes[2], 17);
        free(nodes);
        EXPECT_EQ(DEV_GetSystemMaster(), 1);
        EXPECT_EQ(DEV_GetSelf(), 2);
        EXPECT_EQ(DEV_IsController(), 1);
        EXPECT_EQ(IF_IsNodeUp(2), 1);
        EXPECT_EQ(IF_IsNodeUp(17), 0);
        EXPECT_EQ(LIP_GetLocalLip(), 0x102);
        EXPECT_EQ(SERVICE_IsPhase4Over(1), 0u);
        EXPECT_EQ(ZONE_GetCurrentZone(), 3u);
        EXPECT_EQ(ZONE_IsContainer(3), 1);
        EXPECT_EQ(ZONE_IsContainer(5), 1);
        EXPECT_EQ(ZONE_IsContainer(4), 0);
        EXPECT_EQ(ZONE_GetCurrentContainer(), 4'000'000'000u);
        EXPECT_EQ(MAC_GetBridgeAddress(mac), 0u);
        const uint8_t expected[] = {0x00, 0x11, 0x22, 0xaa, 0xbb, 0xcc};
        EXPECT_EQ(memcmp(mac, expected, 6), 0);
    });
}

TEST_F(Config, FileDescribesInterfaces)
{
    describe(chassis);
    in_child([] {
        const HostConfig *config = HOST_GetConfig();
        ASSERT_NE(config, nullptr) << HOST_LastError();
        ASSERT_EQ(config->interface_count, 4u);
        EXPECT_EQ(config->interfaces[0].index, 7u) << "ascending by index";
        const HostInterface *eleven = HOST_FindInterfaceByName("GE1/0/11");
        ASSERT_NE(eleven, nullptr);
        EXPECT_EQ(eleven->index, 9u);
        EXPECT_EQ(eleven->node, 2);
        EXPECT_EQ(eleven->type, 18u);
        const HostInterface *uplink = HOST_FindInterface(200);
        ASSERT_NE(uplink, nullptr);
        EXPECT_STREQ(uplink->name, "XGE2/0/1");
        EXPECT_EQ(uplink->up, 0);
        EXPECT_EQ(HOST_FindInterface(10), nullptr);
        EXPECT_STREQ(HOST_LastError(), "no interface has the index 10");
        EXPECT_EQ(HOST_FindInterfaceByName("GE1/0/12"), nullptr);
        EXPECT_EQ(HOST_FindInterfaceByName(nullptr), nullptr);
    });
}

TEST_F(Config, WhatTheFileLeavesOutIsAsWithoutOne)
{
    describe("[context]\nzone = 9\n");
    in_child([] {
        const HostConfig *config = HOST_GetConfig();
        ASSERT_NE(config, nullptr) << HOST_LastError();
        EXPECT_EQ(config->zone, 9u);
        EXPECT_EQ(config->node_count, 1u);
        EXPECT_EQ(config->interface_count, 24u);
        EXPECT_EQ(config->bridge_mac[0], 2);
    });
    describe("interface = []\n[device]\nself = 6\n");
    in_child([] {
        const HostConfig *config = HOST_GetConfig();
        ASSERT_NE(config, nullptr) << HOST_LastError();
        EXPECT_EQ(config->interface_count, 0u);
        EXPECT_EQ(config->master, 6);
        EXPECT_EQ(config->lip, 6);
    });
}

TEST_F(Config, SyntaxErrorsNameLineAndColumn)
{
    describe("[device]\nself = 1\nmaster = \n");
    in_child([this] {
        EXPECT_EQ(HOST_GetConfig(), nullptr);
        std::string error = HOST_LastError();
        EXPECT_EQ(error.find(path("host.toml") + ":3:"), 0u) << error;
        EXPECT_GT(error.size(), path("host.toml").size() + 10);
    });
}

TEST_F(Config, WrongValuesNameLineAndKey)
{
    expect_wrong("[device]\n\nself = 70000\n", "3: device.self: expected a number from 0 to 65534");
    expect_wrong("[device]\nself = -1\n", "2: device.self: expected a number from 0 to 65534");
    expect_wrong("[device]\nlip = \"1\"\n", "2: device.lip: expected a number from 0 to 65535");
    expect_wrong("[device]\nmaster = 4\n", "2: device.master: there is no node 4");
    expect_wrong("[device]\nphase4_over = 1\n", "2: device.phase4_over: expected true or false");
    expect_wrong("[device]\nbridge_mac = 5\n", "2: device.bridge_mac: expected a text in quotes");
    expect_wrong("[device]\nacl_resource = [1, 2]\n", "2: device.acl_resource: expected 6 bytes");
    expect_wrong("[device]\nacl_resource = [0, 0, 0, 0, 0, 256]\n",
                 "2: device.acl_resource: expected a number from 0 to 255");
    expect_wrong("[context]\ncontainers = 3\n",
                 "2: context.containers: expected a list of numbers");
    expect_wrong("[device]\nself = 1\nmastre = 1\n",
                 "3: device.mastre: unknown key, known are self, master, lip, phase4_over, "
                 "bridge_mac, acl_resource");
    expect_wrong("\n[devices]\n",
                 "2: devices: unknown, known are device, context, node, interface");
    expect_wrong("[=device]\n", " this is no TOML: a name or a value is malformed");
    expect_wrong("device = 3\n", "1: device: expected a table");
    expect_wrong("node = 3\n", "1: node: expected [[node]]");
    expect_wrong("[interface]\nindex = 1\n", "1: interface: expected [[interface]]");
}

TEST_F(Config, WrongAddressesAreRefused)
{
    for (const char *mac : {"", "00:11:22:33:44", "00:11:22:33:44:5", "00:11:22:33:44:55 ",
                            "00:11:22:33:44:55:66", "00-11-22-33-44-55", "0x:11:22:33:44:55",
                            " 0:11:22:33:44:55", "00:11:22:33:44:5g", "+1:11:22:33:44:55"}) {
        expect_wrong("[device]\nbridge_mac = \"" + std::string(mac) + "\"\n",
                     "2: device.bridge_mac: expected six pairs of hexadecimal digits, as "
                     "02:00:00:00:00:01");
    }
}

TEST_F(Config, WrongNodesAndInterfacesAreNamed)
{
    expect_wrong("[[node]]\nup = true\n", "1: node.id: missing");
    expect_wrong("[[node]]\nid = 1\n[[node]]\nid = 1\n", "4: node.id: node 1 is there twice");
    expect_wrong("[[interface]]\nname = \"a\"\n", "1: interface.index: missing");
    expect_wrong("[[interface]]\nindex = 1\n", "1: interface.name: missing");
    expect_wrong("[[interface]]\nindex = 0\nname = \"a\"\n",
                 "2: interface.index: expected a number from 1 to 2147483647");
    expect_wrong("[[interface]]\nindex = 1\nname = \"a b\"\n",
                 "3: interface.name: expected 1 to 47 printable characters without spaces");
    expect_wrong("[[interface]]\nindex = 1\nname = \"" + std::string(48, 'x') + "\"\n",
                 "3: interface.name: expected 1 to 47 printable characters without spaces");
    expect_wrong("[[interface]]\nindex = 1\nname = \"a\"\nnode = 3\n",
                 "4: interface.node: there is no node 3");
    expect_wrong("[[interface]]\nindex = 1\nname = \"a\"\ncount = 2\n",
                 "3: interface.name: expected a name that ends in a number to count from, as "
                 "GE1/0/1");
    expect_wrong("[[interface]]\nindex = 1\nname = \"a1\"\ncount = 70000\n",
                 "4: interface.count: expected a number from 1 to 65536");
    expect_wrong("[[interface]]\nindex = 1\nname = \"a1\"\ncount = 3\n"
                 "[[interface]]\nindex = 3\nname = \"b\"\n",
                 "6: interface.index: 3 is there twice");
    expect_wrong("[[interface]]\nindex = 1\nname = \"a1\"\ncount = 3\n"
                 "[[interface]]\nindex = 9\nname = \"a3\"\n",
                 "7: interface.name: a3 is there twice");
}

TEST_F(Config, LargestSwitchIsReadQuickly)
{
    describe("[[interface]]\nindex = 1\nname = \"p1\"\ncount = 65536\n");
    in_child([] {
        auto start = Clock::now();
        ASSERT_NE(HOST_GetConfig(), nullptr) << HOST_LastError();
        EXPECT_NE(HOST_FindInterface(65536), nullptr);
        EXPECT_LT(since(start), Milliseconds(5000));
    });
    expect_wrong("[[interface]]\nindex = 1\nname = \"p1\"\ncount = 65536\n"
                 "[[interface]]\nindex = 70000\nname = \"q\"\n",
                 "6: interface.index: more than 65536 interfaces");
}

TEST_F(Config, MissingFileIsAnErrorAndNotADefault)
{
    setenv("OFP_HOST_CONFIG", path("nothing.toml").c_str(), 1);
    in_child([this] {
        EXPECT_EQ(HOST_GetConfig(), nullptr);
        EXPECT_EQ(HOST_LastError(), path("nothing.toml") + ": No such file or directory");
    });
    setenv("OFP_HOST_CONFIG", directory_.c_str(), 1);
    in_child([] { EXPECT_EQ(HOST_GetConfig(), nullptr); });
}

TEST_F(Config, EveryCallFailsInItsWayWhenTheFileIsWrong)
{
    describe("x = 1\n");
    in_child([] {
        uint32_t status = 5;
        uint32_t count = 5;
        uint32_t type = 5;
        uint8_t mac[6];
        char text[100];
        EXPECT_EQ(DEV_GetSystemMaster(), 0xffff);
        EXPECT_EQ(DEV_GetSelf(), 0xffff);
        EXPECT_EQ(DEV_IsController(), 0);
        EXPECT_EQ(DEV_GetAllNodes(&count), nullptr);
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(IF_IsNodeUp(0), 0);
        EXPECT_EQ(SERVICE_GetStatus(0, "OFP", 0, &status), uint32_t{OFP_RC_FAILED});
        EXPECT_EQ(status, 0u);
        EXPECT_EQ(SERVICE_Start(0, "OFP", 0, 0), uint32_t{OFP_RC_FAILED});
        EXPECT_EQ(SERVICE_IsPhase4Over(0), 0u);
        EXPECT_EQ(ZONE_GetCurrentZone(), 0u);
        EXPECT_EQ(ZONE_IsContainer(0), 0);
        EXPECT_EQ(LIP_GetLocalLip(), 0xffff);
        EXPECT_NE(MAC_GetBridgeAddress(mac), 0u);
        EXPECT_NE(CIOCTL(INT16_MIN, 0x700032, nullptr, 0, mac, 6, &count), 0u);
        EXPECT_NE(IF_GetDataByIfIndex(1, 18, &type), 0u);
        EXPECT_EQ(type, 5u);
        EXPECT_EQ(HOST_FindInterface(1), nullptr);
        EXPECT_EQ(HOST_GetSocketPath(0, text, sizeof text), -1);
        EXPECT_EQ(HOST_GetAgentPid(0), -1);
        EXPECT_EQ(HOST_LockAgent(0), -1);
        EXPECT_NE(strstr(HOST_LastError(), "host.toml:1: x: unknown"), nullptr);
    });
}

TEST_F(Config, ExampleIsValid)
{
    setenv("OFP_HOST_CONFIG", EXAMPLES "/host.toml", 1);
    in_child([] {
        const HostConfig *config = HOST_GetConfig();
        ASSERT_NE(config, nullptr) << HOST_LastError();
        EXPECT_GT(config->node_count, 1u);
        EXPECT_GT(config->interface_count, 24u);
    });
}

TEST_F(Config, DeviceCommandAnswersTheAclResource)
{
    describe(chassis);
    in_child([] {
        uint8_t out[8] = {};
        uint32_t length = 0;
        EXPECT_EQ(CIOCTL(INT16_MIN, 0x700032, nullptr, 0, out, 6, &length), 0u);
        const uint8_t expected[8] = {1, 2, 3, 4, 5, 255, 0, 0};
        EXPECT_EQ(length, 6u);
        EXPECT_EQ(memcmp(out, expected, 8), 0);
        EXPECT_EQ(CIOCTL(17, 0x700032, nullptr, 0, out, 8, &length), 0u);
        EXPECT_EQ(CIOCTL(18, 0x700032, nullptr, 0, out, 8, &length), uint32_t{OFP_RC_NOT_FOUND});
        EXPECT_EQ(CIOCTL(INT16_MIN, 0x700033, nullptr, 0, out, 6, &length),
                  uint32_t{OFP_RC_INVALID});
        EXPECT_STREQ(HOST_LastError(), "device command 0x700033 is not known");
        EXPECT_EQ(CIOCTL(INT16_MIN, 0x700032, nullptr, 0, out, 5, &length),
                  uint32_t{OFP_RC_INVALID});
    });
}

} // namespace

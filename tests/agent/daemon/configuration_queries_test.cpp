// How answers about the configuration are laid out and cut.
#include <gtest/gtest.h>

#include "agent/daemon/messages.h"

namespace agent::test {
namespace {

constexpr uint16_t ID = 5;

class ConfigurationQueries : public testing::Test {
protected:
    template <class Change>
    void configure(uint16_t id, Change change)
    {
        InstanceConfig instance = new_instance(id);
        change(instance);
        model.configuration().stage(id, std::move(instance));
        ASSERT_TRUE(model.configuration().commit());
    }

    Datagram ask_instance(uint32_t code, uint16_t id = ID)
    {
        return ask_one(model, join({head(code), tlv(4, join({be16(id), be16(0)}))}));
    }

    Datagram interfaces(uint32_t after)
    {
        return ask_one(model,
                       join({head(0x10000008), tlv(41, join({be32(after), be16(ID), be16(0)}))}));
    }

    // The types of the TLVs behind the message head.
    static std::vector<int> types(const Datagram &datagram)
    {
        std::vector<int> found;
        for (size_t at = 8; at + 4 <= datagram.size();) {
            found.push_back(datagram[at] << 8 | datagram[at + 1]);
            at += 4 + static_cast<size_t>(datagram[at + 2] << 8 | datagram[at + 3]);
        }
        return found;
    }

    Model model;
};

TEST_F(ConfigurationQueries, TheConfiguredBlockHasItsTlvsInTheDocumentedOrder)
{
    configure(ID, [](InstanceConfig &instance) { instance.tables = {{3, {}, 2}}; });
    const Datagram reply = ask_instance(0x10000006);
    EXPECT_EQ(types(reply), (std::vector<int>{124, 69,  9,   88,  90,  92,  94,  10,  127, 128, 164,
                                              172, 177, 178, 199, 211, 224, 233, 234, 68,  188}));
    EXPECT_EQ(to_hex(reply).substr(0, 112), to_hex(hex("0001 0004 20000007"
                                                       "007c 0008 0005 0000 00000000"
                                                       "0045 0008 03 000000 00000002"
                                                       "0009 0008 00000000 0005 0000"
                                                       "0058 0004 0005 0000"
                                                       "005a 0208")));
    configure(ID, [](InstanceConfig &instance) {
        instance.datapath_id = 1;
        instance.precedence = 2;
        instance.filter.filter_kind = 2;
    });
    EXPECT_EQ(types(ask_instance(0x10000006)),
              (std::vector<int>{124, 126, 9,   87,  88,  90,  92,  94,  10, 127, 128, 164,
                                172, 177, 178, 199, 211, 224, 233, 234, 68, 154, 188}));
}

TEST_F(ConfigurationQueries, TheRunningBlockOfAnInactiveInstanceIsEmpty)
{
    configure(ID, [](InstanceConfig &instance) { instance.tables = {{3, {}, 2}}; });
    EXPECT_EQ(ask_instance(0x10000007), head(0x20000008));
    configure(ID, [](InstanceConfig &instance) {
        instance.tables = {{3, {}, 2}};
        instance.active = true;
    });
    EXPECT_EQ(types(ask_instance(0x10000007)),
              (std::vector<int>{124, 70,  9,   87,  88,  90,  92,  94,  10,  127,
                                128, 164, 172, 177, 178, 199, 211, 224, 233, 234}));
}

TEST_F(ConfigurationQueries, TheGlobalBlockIsTheActiveFlagAndTheDescription)
{
    configure(ID, [](InstanceConfig &instance) {
        instance.active = true;
        instance.description = "edge";
    });
    Datagram description(256);
    std::copy_n("edge", 4, description.begin());
    EXPECT_EQ(ask_instance(0x10000005),
              join({head(0x20000006), hex("0043 0004 0001 0000"), tlv(38, description)}));
    EXPECT_EQ(ask_instance(0x10000010), hex("0001 0004 20000011 0043 0004 0001 0000"));
}

TEST_F(ConfigurationQueries, ABlockOfAllTablesFitsTheLibrarysBuffer)
{
    configure(ID, [](InstanceConfig &instance) {
        instance.active = true;
        instance.filter.filter_kind = 1;
        instance.datapath_id = 1;
        instance.precedence = 2;
        for (unsigned id = 0; id < 255; id++) {
            instance.tables.push_back({static_cast<uint8_t>(id), {}, id});
        }
    });
    for (const uint32_t code : {0x10000006u, 0x10000007u}) {
        const Datagram reply = ask_instance(code);
        EXPECT_GT(reply.size(), 255u * 12);
        EXPECT_LE(reply.size(), 8192u);
    }
}

TEST_F(ConfigurationQueries, InterfacesEndWithIndexZeroOrWithNothing)
{
    configure(ID, [](InstanceConfig &instance) {
        for (uint32_t index = 1; index <= 200; index++) {
            instance.bound_ports[index] = 0;
        }
    });
    const Datagram first = interfaces(0);
    EXPECT_EQ(types(first).size(), 146u);
    const Datagram second = interfaces(146);
    EXPECT_EQ(types(second).size(), 55u); // 54 and the end
    EXPECT_EQ(to_hex(second).substr(2 * (second.size() - 52), 8), "00000000");
    EXPECT_EQ(types(interfaces(54)).size(), 146u); // exactly full: no room for the end
    EXPECT_EQ(types(interfaces(200)).size(), 1u);
    EXPECT_EQ(types(interfaces(0xffffffff)).size(), 1u);
}

TEST_F(ConfigurationQueries, TheSummaryIsCutIntoDatagrams)
{
    EXPECT_EQ(ask(model, head(0x10000017)),
              std::vector<Datagram>{hex("0001 0004 20000018 006f 0004 00000000")});
    for (uint16_t id = 1; id <= 293; id++) {
        configure(id, [](InstanceConfig &) {});
    }
    const auto replies = ask(model, head(0x10000017));
    ASSERT_EQ(replies.size(), 3u);
    EXPECT_EQ(to_hex(replies[0]), to_hex(hex("0001 0004 20000018 006f 0004 00000125")));
    EXPECT_EQ(types(replies[1]).size(), 292u);
    EXPECT_EQ(types(replies[2]).size(), 1u);
    EXPECT_EQ(ask_one(model, join({head(0x10000017), hex("00")})), result(TRAILING_BYTES));
}

TEST_F(ConfigurationQueries, AttachmentPortsTravelInTheMachinesByteOrder)
{
    configure(ID, [](InstanceConfig &instance) { instance.bound_ports[2] = 0x11223344; });
    const Datagram reply = ask_one(model, join({head(0x10000024), tlv(200, Datagram(64))}));
    ASSERT_EQ(reply.size(), 8u + 2 * 68);
    const std::string text = to_hex(reply);
    EXPECT_EQ(text.substr(24, 8), "02000000");
    EXPECT_EQ(text.substr(24 + 2 * 52, 24), "ffffffff"
                                            "44332211"
                                            "05000000");
    EXPECT_EQ(text.substr(24 + 2 * 68, 8), "00000000"); // the end
}

TEST_F(ConfigurationQueries, OfAnInstanceThatThereIsNotAreRefused)
{
    for (const uint32_t code : {0x10000005u, 0x10000006u, 0x10000007u, 0x10000010u, 0x10000018u}) {
        EXPECT_EQ(ask_instance(code, 77), result(NO_INSTANCE)) << std::hex << code;
        EXPECT_EQ(ask_one(model, head(code)), result(MISSING_TLV)) << std::hex << code;
    }
    EXPECT_EQ(interfaces(0), result(NO_INSTANCE));
}

} // namespace
} // namespace agent::test

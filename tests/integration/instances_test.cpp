// Instances through the library.
#include "integration/agent_test.h"
#include "integration/exchange.h"

namespace integration {
namespace {

using Instances = AgentTest;

std::vector<uint8_t> table_ids(uint16_t instance)
{
    std::vector<uint8_t> ids;
    uint8_t id = 255;
    while (OFP_get_NextTableID(instance, id, &id) == 0) {
        ids.push_back(id);
    }
    return ids;
}

TEST_F(Instances, AreAddedWithTheirDefaultTablesByACallThatStartsTheAgent)
{
    EXPECT_EQ(agent(), 0);
    EXPECT_EQ(OFP_AddInstance(5), 0u);
    EXPECT_GT(agent(), 0);
    EXPECT_TRUE(instance_exists(5));
    EXPECT_FALSE(instance_exists(6));
    EXPECT_EQ(table_ids(5), (std::vector<uint8_t>{10, 11, 20, 21, 30}));
    EXPECT_EQ(OFP_AddInstance(5), 0u); // as it is already
}

TEST_F(Instances, TheOneOfTheDefaultTableHasTableZeroAlone)
{
    EXPECT_EQ(OFP_AddInstance(4101), 0u);
    EXPECT_EQ(table_ids(4101), (std::vector<uint8_t>{0}));
}

TEST_F(Instances, ThatCannotBeAreRefusedWithTheAgentsOwnCode)
{
    EXPECT_EQ(OFP_AddInstance(0), 0x42300110u);
    EXPECT_EQ(OFP_AddInstance(65535), 0x42300110u);
    EXPECT_FALSE(instance_exists(0));
}

TEST_F(Instances, AreWalkedAcrossForTheInformationBase)
{
    OFP_AddInstance(5);
    OFP_AddInstance(4101);
    uint16_t instance = 0;
    uint8_t table = 255;
    OfpMibTableInfo info{};
    std::vector<std::pair<uint16_t, uint8_t>> seen;
    while (seen.size() < 20 && OFP_get_MibGetNextTableInfo(&instance, &table, &info) == 0) {
        seen.emplace_back(instance, table);
    }
    EXPECT_EQ(seen, (std::vector<std::pair<uint16_t, uint8_t>>{
                        {5, 10}, {5, 11}, {5, 20}, {5, 21}, {5, 30}, {4101, 0}}));
}

TEST_F(Instances, OfAClientAppearWithItsSmoothPeriod)
{
    smooth_start();
    EXPECT_TRUE(instance_exists(CLIENT));
    EXPECT_EQ(table_ids(CLIENT), (std::vector<uint8_t>{TABLE}));
    EXPECT_EQ(OFP_AddInstance(CLIENT), 0u);
    EXPECT_EQ(table_ids(CLIENT), (std::vector<uint8_t>{10, 11, 20, 21, 30, TABLE}));
}

} // namespace
} // namespace integration

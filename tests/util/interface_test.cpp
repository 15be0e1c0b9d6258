#include "ofp/interface.h"

#include <algorithm>

#include "double/platform.h"

using namespace test;

namespace {

using Types = std::vector<uint64_t>;

const Types openflow_types = {18,  19,  21, 39,  88,  123, 68,  69,  121, 56,  22,
                              23,  89,  25, 124, 70,  71,  122, 67,  106, 107, 41,
                              111, 110, 49, 160, 143, 144, 167, 168, 175, 176};

const Types ttp_types = {18, 19, 21,  39, 88, 123, 68, 69,  121, 56,  22, 23,
                         89, 25, 124, 70, 71, 122, 67, 106, 107, 110, 49};

// A selection of mode 2, the types in this order, condition 10.
std::vector<Call> selection_of(const Types &types)
{
    std::vector<Call> calls = {{"IF_Select_Init", {2}}};
    for (uint64_t type : types)
        calls.push_back({"IF_SelectType_Set", {type}});
    calls.push_back({"IF_SelectCondition_Set", {10}});
    return calls;
}

class IfSelect : public PlatformTest {
protected:
    int selection = 0; // the platform's own
};

class OfpIfType : public PlatformTest {};

} // namespace

TEST_F(IfSelect, SelectsTheOpenflowTypesInOrder)
{
    EXPECT_EQ(OFP_util_SetIfSelect(&selection), 0u);
    EXPECT_EQ(platform.calls(), selection_of(openflow_types));
}

TEST_F(IfSelect, SelectsTheTypesOfTheTablePatternModeInOrder)
{
    EXPECT_EQ(OFP_util_SetTTPIfSelect(&selection), 0u);
    EXPECT_EQ(platform.calls(), selection_of(ttp_types));
}

TEST_F(IfSelect, ReturnsTheCodeOfTheConditionAlone)
{
    for (auto select : {OFP_util_SetIfSelect, OFP_util_SetTTPIfSelect}) {
        platform = Platform();
        platform.next("IF_Select_Init", {1});
        platform.next("IF_SelectType_Set", {2});
        EXPECT_EQ(select(&selection), 0u);
        platform.next("IF_SelectCondition_Set", {0x12345678});
        EXPECT_EQ(select(&selection), 0x12345678u);
    }
}

TEST_F(OfpIfType, IsOneOfTheOpenflowTypes)
{
    for (uint32_t type = 0; type < 300; ++type) {
        platform.interface_types = {{9, type}};
        const bool is_one = std::ranges::find(openflow_types, type) != openflow_types.end();
        EXPECT_EQ(OFP_util_IsOfpIfType(9), is_one ? 1 : 0) << type;
    }
    platform.interface_types = {{9, 0x10000 + 18}};
    EXPECT_EQ(OFP_util_IsOfpIfType(9), 0);
}

TEST_F(OfpIfType, IsAskedOfThePlatformByItem)
{
    platform.interface_types = {{9, 41}};
    EXPECT_EQ(OFP_util_IsOfpIfType(9), 1) << "not of the table pattern mode, but OpenFlow's";
    EXPECT_EQ(platform.calls(), std::vector({Call{"IF_GetDataByIfIndex", {9, 18}}}));
}

TEST_F(OfpIfType, IsNoneForIndexZeroWithoutAsking)
{
    platform.interface_types = {{0, 18}};
    EXPECT_EQ(OFP_util_IsOfpIfType(0), 0);
    EXPECT_TRUE(platform.calls().empty());
}

TEST_F(OfpIfType, IsNoneForAnUnknownInterface)
{
    EXPECT_EQ(OFP_util_IsOfpIfType(9), 0);
    platform.interface_types = {{9, 18}};
    platform.next("IF_GetDataByIfIndex", {1});
    EXPECT_EQ(OFP_util_IsOfpIfType(9), 0);
}
